#include "TimeMapStage.h"

#include <cmath>

namespace tessel::verify::judge {
namespace {

/// How far off the list's frequency is from the clip's own.
double ClipSlope(const SoundTrack& clip, std::size_t tone)
{
    for (const ChannelTrack& channel : clip.channels) {
        for (const ToneRun& run : channel.runs) {
            const Tone* found = run.ToneOf(tone);
            if (found != nullptr && run.slopeSigma > 0) {
                return found->slope / (kTwoPi * clip.frequencies[tone] / clip.rate);
            }
        }
    }
    return 0;
}

/// Frequencies by the slopes of phases.
void MeasurePitch(TimeMapDraft& draft)
{
    const double nominal = draft.map.pitch;
    double sum = 0;
    double weights = 0;
    for (const ChannelTrack& channel : draft.movie.channels) {
        for (const ToneRun& run : channel.runs) {
            if (run.tones.size() != 1 || run.slopeSigma <= 0 ||
                run.end - run.begin < kShortRun * draft.movie.rate) {
                continue;
            }
            const Tone& tone = run.tones.front();
            const double cycle = kTwoPi * draft.movie.frequencies[tone.index] / draft.movie.rate;
            const double sigma = run.slopeSigma / cycle + 1e-10;
            sum += (tone.slope / cycle - ClipSlope(draft.clip, tone.index)) / (sigma * sigma);
            weights += 1 / (sigma * sigma);
        }
    }
    if (weights > 0) {
        draft.map.pitch = nominal * (1 + sum / weights);
        draft.map.pitchSigma = 1 / std::sqrt(weights) + 2e-9;
    } else {
        draft.map.pitchSigma = 1e-4;
    }
}

} // namespace

double TimeMap::ClipSeconds(double movieSeconds) const noexcept
{
    double shift = pieces.empty() ? 0 : pieces.front().shift;
    for (const TimePiece& piece : pieces) {
        if (piece.begin <= movieSeconds) {
            shift = piece.shift;
        }
    }
    return tempo * movieSeconds + shift;
}

TimeMap MapTime(const SoundTrack& clip, const SoundTrack& movie, double pitch, double leastSeconds)
{
    TimeMapDraft draft(clip, movie, pitch, leastSeconds);
    MeasurePitch(draft);
    MapByEdges(draft);
    MapStretch(draft);
    RefineByPhases(draft);
    if (!draft.map.IsStretched()) {
        FindStrays(draft);
    }
    return std::move(draft.map);
}

} // namespace tessel::verify::judge
