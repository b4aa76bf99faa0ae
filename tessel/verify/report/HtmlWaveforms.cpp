#include "HtmlWaveforms.h"

#include "Markup.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tessel::verify {
namespace {

constexpr double kWidth = 960;
constexpr double kHeight = 120;

std::string LineOf(const std::vector<float>& samples, double peak, const char* color, double width)
{
    std::string points;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double x =
            kWidth * static_cast<double>(i) / static_cast<double>(std::max<std::size_t>(samples.size(), 2) - 1);
        const double y = kHeight / 2 * (1 - 0.95 * static_cast<double>(samples[i]) / peak);
        fmt::format_to(std::back_inserter(points), "{:.1f},{:.1f} ", x, y);
    }
    return fmt::format("<polyline fill=\"none\" stroke=\"{}\" stroke-width=\"{}\" points=\"{}\"/>\n", color,
                       width, points);
}

float PeakOf(const std::vector<float>& samples)
{
    float peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

} // namespace

std::string WaveformsAsHtml(const std::vector<TellingSound>& sounds)
{
    if (sounds.empty()) {
        return {};
    }
    std::string text = "<h2>Sound</h2>\n<p>Expected in grey and wide, actual in blue.</p>\n";
    for (const TellingSound& sound : sounds) {
        const float peak = std::max({PeakOf(sound.expected), PeakOf(sound.actual), 1e-6F});
        fmt::format_to(std::back_inserter(text),
                       "<figure><svg viewBox=\"0 0 {0} {1}\" width=\"{0}\" height=\"{1}\" role=\"img\" "
                       "aria-label=\"waveform of {2}\">\n",
                       kWidth, kHeight, Escaped(sound.channel));
        text += LineOf(sound.expected, static_cast<double>(peak), "#bbb", 4);
        text += LineOf(sound.actual, static_cast<double>(peak), "#25a", 1.2);
        fmt::format_to(
            std::back_inserter(text),
            "</svg><figcaption>{}, {:.0f} ms from {:.3f} s on; height {:.1f} dBFS</figcaption></figure>\n",
            Escaped(sound.channel), sound.duration * 1000, sound.seconds,
            20 * std::log10(static_cast<double>(peak)));
    }
    return text;
}

} // namespace tessel::verify
