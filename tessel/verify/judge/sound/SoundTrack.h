/// A whole sound as runs, and looking things up in it.
#pragma once

#include "ToneRun.h"

#include <cstddef>
#include <vector>

namespace tessel::verify::judge {

/// All channels of one sound, a clip's or a movie's.
struct SoundTrack {
    double rate = 0;                 ///< samples per second
    double start = 0;                ///< time of sample 0, seconds
    std::vector<double> frequencies; ///< Hz in this sound, by index: the clip's times the pitch
    std::vector<ChannelTrack> channels;

    [[nodiscard]] double SecondsOf(double sample) const noexcept { return start + sample / rate; }
    [[nodiscard]] double SampleAt(double seconds) const noexcept { return (seconds - start) * rate; }
    /// The run that a channel is in at a time; null outside.
    [[nodiscard]] const ToneRun* RunAt(std::size_t channel, double seconds) const noexcept;
};

/// The phase of one of a run's tones at a time, in radians.
[[nodiscard]] double PhaseAt(const SoundTrack& track, const ToneRun& run, const Tone& tone,
                             double seconds) noexcept;

/// A tone that begins or ends, on one channel or on several at once.
struct ToneEdge {
    double seconds = 0;
    double uncertainty = 0; ///< seconds
    std::size_t tone = 0;
    bool isOn = false;
};

enum class StreamStart { IsNoEdge, IsAnEdge };

/// In the order of time. Edges of one kind within 3 ms are one.
/// @param start  whether a tone that sounds from the first sample on begins there: a clip's does; of a movie's,
/// who knows
[[nodiscard]] std::vector<ToneEdge> EdgesOf(const SoundTrack& track, StreamStart start);

} // namespace tessel::verify::judge
