/// Sines of many phases at once.
#pragma once

#include <cstdint>
#include <span>

namespace ImporterTessel {

/// Registers that the sines are computed in. Every width gives the same bits: the operations are those of
/// IEEE 754 doubles, in the same order, never fused.
enum class VectorWidth : std::uint8_t {
    Baseline, ///< what every processor of the target has
    Avx2,     ///< 256 bits
    Avx512    ///< 512 bits
};

/// Whether this processor and its operating system have them. Threads: [thread-safe].
[[nodiscard]] bool HasVectorWidth(VectorWidth width) noexcept;
/// The widest one that this machine has. Threads: [thread-safe].
[[nodiscard]] VectorWidth WidestVectors() noexcept;

/// Phases up to this magnitude, in radians, are within `FillSines`' accuracy: 2^24, some 2.6 million cycles.
inline constexpr double kLargestVectorPhase = 0x1p24;

/// Writes float(sin(phase) × `amplitude`) for each phase.
///
/// @param phases     Radians, |phase| ≤ `kLargestVectorPhase`.
/// @param amplitude  Any double.
/// @param out        As many floats as there are phases; borrowed for the call.
/// @param width      One that this machine has.
///
/// The sine, before it is rounded to float, is within 5e-16 of the true one, relative to it (measured: 4.9e-16;
/// 3e-13 at the doubles nearest to multiples of pi): so about one float in 10^8 differs from one made by an
/// exact sine, and then by one unit of the last place. Threads: [any-thread]. Never allocates.
void FillSines(std::span<const double> phases, double amplitude, float* out, VectorWidth width) noexcept;

} // namespace ImporterTessel
