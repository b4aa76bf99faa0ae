#include "ContainerReport.h"

#include <fmt/format.h>

namespace tessel::verify::judge {

void ContainerReport::Fault(std::string_view id, std::string message, Quantity expected, Quantity found)
{
    Finding& finding = mFindings.Fault(id, std::move(message));
    finding.expected = std::move(expected);
    finding.found = std::move(found);
    if (std::holds_alternative<double>(finding.found)) {
        finding.uncertainty = 0;
    }
}

void ContainerReport::FaultUnless(bool isFine, std::string_view id, const std::string& what,
                                  const std::string& expected, const std::string& found)
{
    if (isFine) {
        mFindings.AsExpected(id);
    } else {
        Fault(id, fmt::format("{} is {}, not {}", what, found, expected), expected, found);
    }
}

void ContainerReport::Unsayable(std::string_view id, const std::string& what, const std::string& expected)
{
    const bool isSound = !mMovie.picture || id == id::kContainerLayout;
    const std::string line =
        fmt::format("{} in {} cannot {}; the clip has {}",
                    isSound ? mMovie.sound->codec : mMovie.picture->codec, mMovie.kind, what, expected);
    if (mGiven.isStrict) {
        Fault(id, line, expected, std::string("cannot be said"));
    } else {
        mFindings.Note(fmt::format("{} [{}]", line, id));
        mFindings.NotVisible(id);
    }
}

} // namespace tessel::verify::judge
