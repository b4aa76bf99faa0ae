/// Sines of many phases at once.
#pragma once

#include <kestrel/qelaccelerate/VectorWidth.h>

#include <span>

namespace ImporterTessel {

using qelaccelerate::VectorWidth;

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
