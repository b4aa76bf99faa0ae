/// Frames as people write them: numbers and timecodes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessel::view {

/// A clip's frames: 0 to `count` - 1.
struct FrameScale {
    std::int64_t count = 0;
    std::int32_t rateNumerator = 0; ///< frames per second; 0: not known
    std::int32_t rateDenominator = 1;

    [[nodiscard]] double PerSecond() const noexcept
    {
        return rateNumerator > 0 ? static_cast<double>(rateNumerator) / rateDenominator : 0.0;
    }
};

/// "00:00:04:12", frame 0 being 00:00:00:00; with ';' before the frames at rates that have drop-frame counting.
/// Empty for rates without timecodes.
[[nodiscard]] std::string TimecodeOf(const FrameScale& scale, std::int64_t frame);

/// The frame that a person names: "112", "00:00:04:12", or "+25" and "-25" from the current one. Numbers beyond
/// the clip's ends are its ends, also in relative steps.
/// @throws exporting::RequestError  for any other text; says what would be right
[[nodiscard]] std::int64_t FrameNamed(const FrameScale& scale, std::string_view text, std::int64_t current);

/// The same, steps counted from frame 0. @throws exporting::RequestError  also for a frame beyond the clip's
/// ends
[[nodiscard]] std::int64_t ExistingFrameNamed(const FrameScale& scale, std::string_view text);

/// @throws exporting::RequestError  for a text that names a frame of no clip; says what would be right
void RequireFrameForm(std::string_view text);

} // namespace tessel::view
