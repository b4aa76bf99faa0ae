#include "SoundTrack.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tessel::verify::judge {

const ToneRun* SoundTrack::RunAt(std::size_t channel, double seconds) const noexcept
{
    const std::vector<ToneRun>& runs = channels[channel].runs;
    const double sample = SampleAt(seconds);
    auto found = std::upper_bound(runs.begin(), runs.end(), sample,
                                  [](double at, const ToneRun& run) { return at < run.begin; });
    if (found == runs.begin()) {
        return nullptr;
    }
    --found;
    return sample < found->end ? &*found : nullptr;
}

double PhaseAt(const SoundTrack& track, const ToneRun& run, const Tone& tone, double seconds) noexcept
{
    const double samples = track.SampleAt(seconds) - run.middle;
    const double turns = track.frequencies[tone.index] / track.rate * samples;
    return tone.phase + tone.slope * samples + 2 * std::numbers::pi * (turns - std::floor(turns));
}

std::vector<ToneEdge> EdgesOf(const SoundTrack& track, StreamStart start)
{
    constexpr double kSameMoment = 0.003;
    // Codecs fill their last frame with silence: 1024 samples of AAC, 1152 of MP3, 20 ms of Opus.
    constexpr double kLongestPadding = 0.03;
    std::vector<ToneEdge> edges;
    for (const ChannelTrack& channel : track.channels) {
        const ToneRun* before = nullptr;
        for (const ToneRun& run : channel.runs) {
            const double uncertainty = run.uncertainty / track.rate;
            for (const Tone& tone : run.tones) {
                const bool isNew = before == nullptr
                                       ? start == StreamStart::IsAnEdge
                                       : !before->isOther && before->ToneOf(tone.index) == nullptr;
                if (isNew) {
                    edges.push_back({track.SecondsOf(run.begin), uncertainty, tone.index, true});
                }
            }
            const bool isPadding =
                run.isLast && run.IsSilent() && run.end - run.begin < kLongestPadding * track.rate;
            if (before != nullptr && !run.isOther && !isPadding) {
                for (const Tone& tone : before->tones) {
                    if (run.ToneOf(tone.index) == nullptr) {
                        edges.push_back({track.SecondsOf(before->end), uncertainty, tone.index, false});
                    }
                }
            }
            before = &run;
        }
    }
    std::sort(edges.begin(), edges.end(),
              [](const ToneEdge& a, const ToneEdge& b) { return a.seconds < b.seconds; });
    std::vector<ToneEdge> merged;
    for (const ToneEdge& edge : edges) {
        const auto same = std::find_if(merged.rbegin(), merged.rend(), [&](const ToneEdge& other) {
            return edge.seconds - other.seconds > kSameMoment ||
                   (other.tone == edge.tone && other.isOn == edge.isOn);
        });
        if (same != merged.rend() && edge.seconds - same->seconds <= kSameMoment) {
            same->uncertainty = std::min(same->uncertainty, edge.uncertainty);
        } else {
            merged.push_back(edge);
        }
    }
    return merged;
}

} // namespace tessel::verify::judge
