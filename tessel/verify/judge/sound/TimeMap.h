/// Which moment of the clip's sound each moment of a movie's carries.
#pragma once

#include "SoundTrack.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace tessel::verify::judge {

/// From `begin` on, the movie's sound at time t is the clip's at speed × t + shift.
struct TimePiece {
    double begin = 0;      ///< movie seconds
    double shift = 0;      ///< seconds
    std::size_t edges = 0; ///< how many beginnings and ends of tones agree with it
};

/// The movie leaves out or repeats something.
struct TimeStep {
    double first = 0; ///< movie seconds between which it happens
    double last = 0;
    double skipped = 0;     ///< seconds of the clip that are left out; negative: heard again, or added
    double uncertainty = 0; ///< of that, seconds
    double period = 0;      ///< seconds; above 0: only told modulo this period of a tone
};

/// A tone of a movie that stands where the clip has none of it, or a pause where the clip has the tone.
struct StrayTone {
    double begin = 0; ///< movie seconds
    double end = 0;
    std::size_t tone = 0;
    double clipBegin = 0; ///< where the clip has it, seconds
    bool isPause = false;
};

/// The least change of speed that counts as stretched, a ratio less 1.
constexpr double kLeastStretch = 0.002;

struct TimeMap {
    double pitch = 1;              ///< frequencies in relation to the clip's
    double pitchSigma = 0;         ///< of that
    double tempo = 1;              ///< clip seconds in a movie second, from beginnings and ends of tones
    double tempoSigma = 0;         ///< 0: no edges to tell
    std::vector<TimePiece> pieces; ///< at least one
    std::vector<TimeStep> steps;
    std::vector<StrayTone> strays;
    std::vector<int> signs;   ///< by channel of the movie: -1 is upside down, 0 unknown
    bool hasEdges = false;    ///< false: `shift` is only known modulo the tone's period
    double period = 0;        ///< of that tone, seconds
    bool isAmbiguous = false; ///< half a period later and upside down would do as well
    double sigma = 0;         ///< of shifts, seconds

    /// The sound lasts longer or shorter than its pitch says: phases cannot be compared with the clip's. Phases
    /// tell a smaller difference from lost samples, which bend a line through all edges as well.
    [[nodiscard]] bool IsStretched() const noexcept { return std::abs(tempo / pitch - 1) > kLeastStretch; }

    /// The clip's time at a movie's time.
    [[nodiscard]] double ClipSeconds(double movieSeconds) const noexcept;
};

/// @param clip,movie    tracks with the same list of tones
/// @param pitch         the movie's frequencies in relation to the clip's, about
/// @param leastSeconds  a smaller step does not count
[[nodiscard]] TimeMap MapTime(const SoundTrack& clip, const SoundTrack& movie, double pitch,
                              double leastSeconds);

} // namespace tessel::verify::judge
