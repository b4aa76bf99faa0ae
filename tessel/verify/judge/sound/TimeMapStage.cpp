#include "TimeMapStage.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {

double Median(std::vector<double> values)
{
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double Scatter(const std::vector<double>& values)
{
    const double median = Median(values);
    std::vector<double> off;
    off.reserve(values.size());
    for (const double value : values) {
        off.push_back(std::abs(value - median));
    }
    return 1.4826 * Median(off);
}

TimeMapDraft::TimeMapDraft(const SoundTrack& clipTrack, const SoundTrack& movieTrack, double pitch,
                           double leastSeconds)
    : clip(clipTrack), movie(movieTrack), least(leastSeconds), clipEdges(EdgesOf(clip, StreamStart::IsAnEdge)),
      movieEdges(EdgesOf(movie, StreamStart::IsNoEdge))
{
    map.pitch = pitch;
    for (const ChannelTrack& channel : clip.channels) {
        if (!channel.runs.empty()) {
            clipEnd = std::max(clipEnd, clip.SecondsOf(channel.runs.back().end));
        }
    }
}

const ToneEdge* TimeMapStage::Near(const ToneEdge& edge, double clipSeconds, double tolerance) const
{
    auto at = std::lower_bound(mClipEdges.begin(), mClipEdges.end(), clipSeconds - tolerance,
                               [](const ToneEdge& e, double seconds) { return e.seconds < seconds; });
    const ToneEdge* best = nullptr;
    for (; at != mClipEdges.end() && at->seconds <= clipSeconds + tolerance; ++at) {
        if (at->tone == edge.tone && at->isOn == edge.isOn &&
            (best == nullptr || std::abs(at->seconds - clipSeconds) < std::abs(best->seconds - clipSeconds))) {
            best = &*at;
        }
    }
    return best;
}

std::optional<double> TimeMapStage::AngleOf(const ToneRun& run, const Tone& tone, double shift) const
{
    const double middle = mMovie.SecondsOf(run.middle);
    const double clipSeconds = mMap.tempo * middle + shift;
    for (std::size_t source = 0; source < mClip.channels.size(); ++source) {
        const ToneRun* other = mClip.RunAt(source, clipSeconds);
        const Tone* wanted = other != nullptr ? other->ToneOf(tone.index) : nullptr;
        if (wanted != nullptr) {
            return std::remainder(
                PhaseAt(mMovie, run, tone, middle) - PhaseAt(mClip, *other, *wanted, clipSeconds), kTwoPi);
        }
    }
    return std::nullopt;
}

bool TimeMapStage::StaysInSteps(const std::vector<EdgeMatch>& matches, double slope) const
{
    std::vector<double> stepped;
    std::vector<double> sloped;
    for (std::size_t i = 1; i < matches.size(); ++i) {
        const double movie = matches[i].movie - matches[i - 1].movie;
        const double clip = matches[i].clip - matches[i - 1].clip;
        stepped.push_back(clip - mMap.pitch * movie);
        sloped.push_back(clip - slope * movie);
    }
    const double usual = std::max(1.5 / mMovie.rate, 3 * std::min(Scatter(stepped), Scatter(sloped)));
    const auto explained = [&](const std::vector<double>& offs) {
        return std::count_if(offs.begin(), offs.end(), [&](double off) { return std::abs(off) <= usual; });
    };
    return explained(stepped) > explained(sloped);
}

std::optional<std::pair<double, double>> TimeMapStage::SpliceBetween(double first, double last) const
{
    std::optional<std::pair<double, double>> place;
    for (const ChannelTrack& channel : mMovie.channels) {
        for (std::size_t r = 1; r < channel.runs.size(); ++r) {
            const ToneRun& before = channel.runs[r - 1];
            const ToneRun& run = channel.runs[r];
            const double at = mMovie.SecondsOf(run.begin);
            const bool isSameTone = !run.tones.empty() && !before.tones.empty() &&
                                    run.tones.front().index == before.tones.front().index;
            if (isSameTone && at >= first && at <= last) {
                place = {mMovie.SecondsOf(before.end), at};
            }
        }
        for (const Gap& gap : channel.gaps) {
            const double at = mMovie.SecondsOf(gap.first);
            if (!place && gap.isSilent && at > first && mMovie.SecondsOf(gap.last) < last) {
                place = {at, mMovie.SecondsOf(gap.last)};
            }
        }
    }
    return place;
}

} // namespace tessel::verify::judge
