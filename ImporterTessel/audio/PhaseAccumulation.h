/// The running phase of a sine: x, x + step, x + step + step ..., each sum rounded to double.
#pragma once

#include <span>

namespace ImporterTessel {

/// Writes the `phases.size()` sums that start at `phase`, bit for bit those of repeated addition.
///
/// @param phase  First value written; any double.
/// @param step   Added from one value to the next; any double.
/// @return The sum that follows the last one written: where the next call goes on.
/// Threads: [any-thread]. Cost: about a multiplication and an addition a value, none of which waits for the
/// one before it, except where the sum passes a power of two.
[[nodiscard]] double AccumulatePhases(double phase, double step, std::span<double> phases) noexcept;

} // namespace ImporterTessel
