#include "Fault.h"

#include <tessel/typed/NearMisses.h>

#include <fmt/format.h>

#include <algorithm>

namespace tessel::damage {

std::vector<Fault> AllFaults()
{
    std::vector<Fault> all;
    for (const std::span<const Fault> group :
         {ContainerFaults(), OrderFaults(), GeometryFaults(), FieldFaults(), ColorFaults(), SoundFaults()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

void AddFault(DamagePlan& plan, const std::string& text)
{
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::string name = text.substr(0, equals);
    const std::vector<Fault> faults = AllFaults();
    const auto fault =
        std::find_if(faults.begin(), faults.end(), [&](const Fault& row) { return row.name == name; });
    if (fault == faults.end()) {
        throw FaultError(fmt::format("--fault {}: no such fault; tessel damage --list shows them{}", text,
                                     typed::DidYouMean(name, typed::NamesOfRows(faults))));
    }
    const std::string given(equals < text.size() ? std::string_view(text).substr(equals + 1) : fault->usual);
    FaultValue value(fault->name, given, fault->form);
    Truth truth{name, given, std::nullopt, std::nullopt};
    fault->apply(plan, value, truth);
    value.End();
    plan.truths.push_back(std::move(truth));
}

} // namespace tessel::damage
