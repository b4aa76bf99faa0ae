/// Which of the clip's channels each channel of a movie carries, and how loud.
#pragma once

#include "SoundTrack.h"
#include "TimeMap.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tessel::verify::judge {

/// What one channel of a movie is made of, by least squares over all moments in which tones sound.
struct MixRow {
    std::vector<double> gains;   ///< by channel of the clip; meaningless for one that cannot be told apart
    std::vector<double> moments; ///< products of the clip's levels that the row was fitted with, N × N
    double level = 0;            ///< RMS of the movie's tones over those moments
    double expectedLevel = 0;    ///< of the loudest channel of the clip over them
    double unexplained = 0;      ///< part of the energy that no mixture explains, 0..1
    int source = -1;             ///< the one channel of the clip that explains it, -1: none does alone
    double gain = 0;             ///< of that one; negative: upside down
    double alone = 0;            ///< part of the energy that `source` leaves unexplained
    bool isSilent = false;
    bool isOutOfBand = false; ///< all that it should carry is above what the codec keeps of it
};

/// A stretch in which a channel is not what it is elsewhere.
struct Deviation {
    std::size_t channel = 0;
    double begin = 0; ///< movie seconds
    double end = 0;
    bool isSilent = false;
};

struct MixFit {
    std::vector<MixRow> rows;       ///< by channel of the movie
    std::vector<bool> isIdentified; ///< by channel of the clip: it can be told from every other one
    std::vector<bool> isHeard;      ///< by channel of the clip: it sounds at all
    std::vector<Deviation> deviations;
    double seconds = 0; ///< of sound that was compared
};

/// @param lowChannel  of the movie, of which its codec keeps nothing above some 120 Hz: the one for low
///                    frequencies, in lossy codecs
[[nodiscard]] MixFit FitMix(const SoundTrack& clip, const SoundTrack& movie, const TimeMap& map,
                            std::optional<int> lowChannel = std::nullopt);

/// A matrix of the closed list.
struct KnownMix {
    const char* name;
    std::vector<std::vector<double>> rows; ///< by channel of the movie, then of the clip; file order
};

struct MixMatch {
    std::string name;
    double gain = 1;
    double residual = 1; ///< part of the level, 0..1, that the matrix leaves unexplained
    std::string runnerUp;
    double runnerUpResidual = 1;
};

/// The known matrix that comes nearest, whatever its overall gain; an empty name where no known matrix has
/// as many inputs and outputs.
[[nodiscard]] MixMatch NearestMix(const MixFit& fit, std::size_t clipChannels);

} // namespace tessel::verify::judge
