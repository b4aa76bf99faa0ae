#include "FrameFailure.h"

#include <kestrel/importabi/ResultCodes.h>

#include <array>
#include <cstdint>

namespace importhost {
namespace {

constexpr std::int32_t kRenderSwatches = 2;
constexpr std::int32_t kChartWidth = 1920;
constexpr std::int32_t kChartHeight = 1080;
constexpr std::array<const char*, 3> kBandNames = {"colorSwatches", "legalRangeGradient", "fullRangeGradient"};

std::string Size(const ClipDescription& description)
{
    return std::to_string(description.width) + "x" + std::to_string(description.height);
}

std::string RefusalText(FrameRefusal refusal, const ClipDescription& description)
{
    switch (refusal) {
    case FrameRefusal::FormatCannotBePainted:
        return R"("mPixelFormat": )" + std::to_string(description.pixelFormatCode) +
               " is no pixel format that can be painted, one of the host's 48 was expected";
    case FrameRefusal::SizeOutOfRange:
        return "a frame of " + Size(description) +
               R"( cannot be made: "mFrameWidth" and "mFrameHeight" must be 1 to )" +
               std::to_string(kLargestFrameSide);
    case FrameRefusal::TooLarge:
        return "a frame of " + Size(description) + " in this pixel format is too large: it would pass 2 GiB";
    case FrameRefusal::OutOfMemory:
        return "no memory for a frame of " + Size(description);
    case FrameRefusal::None:
        break;
    }
    return {};
}

} // namespace

std::optional<std::string> BrokenSwatchRule(const ClipDescription& description, const SettingsKeys& keys)
{
    if (description.width != kChartWidth || description.height != kChartHeight) {
        return "a swatch chart needs a frame of 1920x1080, this one is " + Size(description);
    }
    for (std::size_t i = 0; i < keys.swatchBands.size(); ++i) {
        const SwatchBand& band = keys.swatchBands[i];
        const std::string name = std::string("swatch band \"") + kBandNames[i] + "\": ";
        if (band.xCount == 0 || band.yCount == 0) {
            return name + "no coordinates; load a swatch coordinates file";
        }
        if (band.colorPartCount != band.xCount * band.yCount * 3) {
            return name + std::to_string(band.xCount) + " columns and " + std::to_string(band.yCount) +
                   " rows need " + std::to_string(band.xCount * band.yCount * 3) + " color parts, there are " +
                   std::to_string(band.colorPartCount);
        }
        const std::int32_t limit =
            i + 1 < keys.swatchBands.size() ? keys.swatchBands[i + 1].firstY : kChartHeight;
        const bool nextIsThere = i + 1 == keys.swatchBands.size() || keys.swatchBands[i + 1].yCount > 0;
        // Positions are unsigned where they are painted.
        if (nextIsThere && static_cast<std::uint32_t>(band.lastY) >= static_cast<std::uint32_t>(limit)) {
            return name + "its last row " + std::to_string(static_cast<std::uint32_t>(band.lastY)) +
                   " must be above " + std::to_string(static_cast<std::uint32_t>(limit)) +
                   (i + 1 < keys.swatchBands.size() ? ", the next band's first" : ", the frame's height");
        }
    }
    return std::nullopt;
}

std::string FrameFailureText(const RenderedFrame& rendered, const ClipDescription& description,
                             const SettingsKeys& keys)
{
    if (rendered.refusal != FrameRefusal::None) {
        return RefusalText(rendered.refusal, description);
    }
    if (rendered.result == ksResultOutOfMemory) {
        return "the plug-in ran out of memory";
    }
    if (rendered.result == ksResultServed) {
        return "the plug-in made no frame";
    }
    if (keys.renderFormat == kRenderSwatches) {
        if (auto rule = BrokenSwatchRule(description, keys)) {
            return *std::move(rule);
        }
    }
    return "the plug-in failed (result " + std::to_string(rendered.result) + ")";
}

} // namespace importhost
