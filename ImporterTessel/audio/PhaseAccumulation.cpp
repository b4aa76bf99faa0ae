#include "PhaseAccumulation.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace ImporterTessel {
namespace {

/// Sign and exponent: equal for doubles of one sign between the same two powers of two, which therefore all
/// are multiples of one unit, their last binary place.
std::uint64_t BinadeOf(double value) noexcept
{
    return std::bit_cast<std::uint64_t>(value) >> 52U;
}

/// How many of the sums `phase`, `phase` + `advance`, ... stay strictly within the binade of `phase`: at
/// least 1, at most `limit`. `phase` is finite and not 0.
std::size_t StepsInBinade(double phase, double advance, std::size_t limit) noexcept
{
    if (advance == 0.0) {
        return limit;
    }
    const double magnitude = std::fabs(phase);
    int exponent = 0;
    std::frexp(magnitude, &exponent);
    const double lower = std::ldexp(0.5, exponent);
    const bool grows = (phase > 0.0) == (advance > 0.0);
    const double room = grows ? lower - (magnitude - lower) : magnitude - lower;
    // The quotient may have been rounded up, but by less than one step, and the run's last sum is one step
    // short of it.
    const double steps = room / std::fabs(advance);
    return steps < static_cast<double>(limit) ? std::max<std::size_t>(static_cast<std::size_t>(steps), 1)
                                              : limit;
}

/// Fills a stretch in which no addition rounds.
void FillLinear(double phase, double advance, std::span<double> phases) noexcept
{
    const auto count = static_cast<std::int32_t>(phases.size());
    double* const out = phases.data();
    for (std::int32_t k = 0; k < count; ++k) {
        out[k] = phase + static_cast<double>(k) * advance;
    }
}

/// Below this many sums a run is not worth its division.
constexpr std::size_t kShortestRun = 8;
/// Keeps a run's index in 32 bits, which vectorise.
constexpr std::size_t kLongestRun = std::size_t{1} << 30U;

} // namespace

// Repeated addition is a chain in which each sum waits for the one before. It need not be walked: between two
// powers of two all sums are multiples of one unit u. The step is m·u + r with |r| ≤ u/2, and rounding takes
// r off the same way at each addition (where r is exactly u/2, sums go to the even multiple, and once one of
// them is even, all are). So within a binade, from its second sum on, every addition advances by the same
// exact multiple of u, and first + k × advance has 53 bits at most: no operation in it rounds.
double AccumulatePhases(double phase, double step, std::span<double> phases) noexcept
{
    while (!phases.empty()) {
        const double first = phase;
        phases[0] = first;
        phases = phases.subspan(1);
        phase = first + step;
        const double next = phase + step;
        // Where doubles carry more bits between operations than in memory, sums are walked one by one.
        if (FLT_EVAL_METHOD != 0 || phases.size() < kShortestRun || !std::isnormal(phase) ||
            BinadeOf(first) != BinadeOf(phase) || BinadeOf(next) != BinadeOf(phase)) {
            continue;
        }
        const double advance = next - phase;
        const std::size_t count = StepsInBinade(phase, advance, std::min(phases.size(), kLongestRun));
        FillLinear(phase, advance, phases.first(count));
        phase = phases[count - 1] + step;
        phases = phases.subspan(count);
    }
    return phase;
}

} // namespace ImporterTessel
