/// Values as people type them: sizes, rates, durations, colours, tones.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::typed {

/// Two numbers, each 1..2147483647: width and height, numerator and denominator.
using Pair = std::pair<std::int64_t, std::int64_t>;

/// Red, green, blue, alpha.
using Color = std::array<float, 4>;

struct Tone {
    float frequency; ///< hertz
    float amplitude; ///< linear peak
};

/// Each throws SettingError for a text that is not a valid value: what would be right, without the name of the
/// setting. Threads: [any-thread].
/// @{

/// "1920x1080".
[[nodiscard]] Pair ReadSize(std::string_view text);

/// "25", "29.97", "30000/1001"; the usual roundings of NTSC rates stand for the exact ones.
[[nodiscard]] Pair ReadRate(std::string_view text);

/// "10/11", "1", or the name of one of the host's ratios in any case: "dvntsc".
[[nodiscard]] Pair ReadPixelAspect(std::string_view text);

/// "250f" (frames), "10s", "500ms", "2m", "1h", or a timecode, with ';' before the frames for drop frame. In
/// ticks; times are rounded to the nearest whole number of frames, of which there is at least one.
/// @param ticksPerFrame  more than 0
[[nodiscard]] std::int64_t ReadDuration(std::string_view text, std::int64_t ticksPerFrame);

/// Colours between blanks or slashes: "1,0.5,0.25", with a fourth number for alpha, "#ff8000", or a name of a
/// colour bar: white, yellow, cyan, green, magenta, red, blue, black.
[[nodiscard]] std::vector<Color> ReadColors(std::string_view text);

/// "1000:-18", hertz and dBFS; "silence".
[[nodiscard]] Tone ReadTone(std::string_view text);

/// A finite number greater than 0.
[[nodiscard]] double ReadPositive(std::string_view text);

/// "6", "stereo", "5.1", "mono".
[[nodiscard]] int ReadChannelCount(std::string_view text);

/// "on", "off", "true", "false", "yes", "no".
[[nodiscard]] bool ReadSwitch(std::string_view text);

/// @}

} // namespace tessel::typed
