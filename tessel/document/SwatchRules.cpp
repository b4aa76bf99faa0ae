#include "SwatchRules.h"

#include <cstdint>

namespace tessel::document {
namespace {

constexpr std::int32_t kChartWidth = 1920;
constexpr std::int32_t kChartHeight = 1080;

} // namespace

std::optional<std::string> BrokenSwatchRule(const importhost::ClipDescription& description,
                                            const DocumentFacts& facts)
{
    if (description.width != kChartWidth || description.height != kChartHeight) {
        return "a swatch chart needs a frame of 1920x1080, this one is " + std::to_string(description.width) +
               "x" + std::to_string(description.height);
    }
    for (std::size_t i = 0; i < facts.swatchBands.size(); ++i) {
        const SwatchBand& band = facts.swatchBands[i];
        const std::string name = std::string("swatch band \"") + kBandNames[i] + "\": ";
        if (band.xCount == 0 || band.yCount == 0) {
            return name + "no coordinates; load a swatch coordinates file";
        }
        if (band.colorPartCount != band.xCount * band.yCount * 3) {
            return name + std::to_string(band.xCount) + " columns and " + std::to_string(band.yCount) +
                   " rows need " + std::to_string(band.xCount * band.yCount * 3) + " color parts, there are " +
                   std::to_string(band.colorPartCount);
        }
        const bool isLast = i + 1 == facts.swatchBands.size();
        const bool nextIsThere = isLast || facts.swatchBands[i + 1].yCount > 0;
        const std::int32_t limit = isLast ? kChartHeight : facts.swatchBands[i + 1].firstY;
        // Positions are unsigned where they are painted.
        if (nextIsThere && static_cast<std::uint32_t>(band.lastY) >= static_cast<std::uint32_t>(limit)) {
            return name + "its last row " + std::to_string(static_cast<std::uint32_t>(band.lastY)) +
                   " must be above " + std::to_string(static_cast<std::uint32_t>(limit)) +
                   (isLast ? ", the frame's height" : ", the next band's first");
        }
    }
    return std::nullopt;
}

} // namespace tessel::document
