/// One block of samples, and what of it counts as a tone.
#pragma once

#include "TrackerSetup.h"

#include <complex>
#include <cstdint>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// A block's tones with their phases in relation to the known frequencies.
struct TrackedBlock {
    std::int64_t first = 0; ///< sample
    BlockTones fit;
    std::vector<std::complex<double>> tones; ///< turned back to stream position 0; zero where none sounds
    double loudest = 0;
};

/// Threads: [any-thread]. @{
[[nodiscard]] TrackedBlock FitBlock(const TrackerSetup& setup, std::span<const float> samples,
                                    std::int64_t first);

/// Whether two neighbours are of one steady stretch.
[[nodiscard]] bool AreAlike(const TrackerSetup& setup, const TrackedBlock& a, const TrackedBlock& b);

/// How far a block's tone may be off, by what no tone explains: noise alone gives that much of any frequency.
[[nodiscard]] double ToneNoise(const TrackerSetup& setup, double residual) noexcept;
/// @}

/// How far a block's tone may be from another's or a run's, as a part of it.
constexpr double kAlikeTones = 0.08;

} // namespace tessel::verify::judge
