#include "SoundReport.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {

double Decibels(double ratio) noexcept
{
    return ratio > 1e-10 ? 20 * std::log10(ratio) : -200;
}

std::string Joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        text += i == 0 ? "" : i + 1 == parts.size() ? " and " : ", ";
        text += parts[i];
    }
    return text;
}

Span SoundReport::ClipSpan(double first, double last) const
{
    constexpr double kBefore = 1e-4;
    const double begin = mMap.ClipSeconds(first - kBefore) + kBefore * mMap.tempo;
    const double end = mMap.ClipSeconds(last);
    return {std::llround(std::min(begin, end) * mClip.rate), std::llround(std::max(begin, end) * mClip.rate)};
}

std::vector<std::string> SoundReport::CutChannels() const
{
    std::vector<std::string> cut;
    for (std::size_t m = 0; m < Channels(); ++m) {
        const ChannelStatistics& own = mMovie.channels[m].statistics;
        if (own.flatBlocks >= 3 && own.flatBlocks * 20 > own.toneBlocks) {
            cut.push_back(NameOf(m));
        }
    }
    return cut;
}

} // namespace tessel::verify::judge
