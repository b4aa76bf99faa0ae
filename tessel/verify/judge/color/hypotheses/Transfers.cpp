#include "Curves.h"
#include "HypothesisList.h"

#include <fmt/format.h>

namespace tessel::verify::judge {
namespace {

/// Each component through a curve, mirrored for negative values.
Triple Through(double (*function)(double) noexcept, const Triple& rgb) noexcept
{
    Triple result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = rgb[i] < 0 ? -function(-rgb[i]) : function(rgb[i]);
    }
    return result;
}

} // namespace

void AddTransfers(HypothesisList& list)
{
    for (const Curve& curve : kCurves) {
        const std::string name(curve.name);
        list.AddColors({id::kColorTransfer}, fmt::format("the transfer function is applied twice ({})", name),
                       {name + " twice"}, {"once"},
                       [curve](const ColorPair& pair) { return Through(curve.toSignal, pair.rgb); });
        list.AddColors({id::kColorTransfer},
                       fmt::format("the transfer function is not applied ({}): codes are linear", name),
                       {"linear"}, {name},
                       [curve](const ColorPair& pair) { return Through(curve.toLight, pair.rgb); });
        for (const Curve& other : kCurves) {
            if (other.name != curve.name) {
                list.AddColors({id::kColorTransfer}, fmt::format("{} was converted to {}", name, other.name),
                               {std::string(other.name)}, {name}, [curve, other](const ColorPair& pair) {
                                   return Through(other.toSignal, Through(curve.toLight, pair.rgb));
                               });
            }
        }
    }
}

} // namespace tessel::verify::judge
