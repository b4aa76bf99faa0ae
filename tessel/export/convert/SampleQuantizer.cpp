#include "SampleQuantizer.h"

#include <algorithm>
#include <cmath>

namespace tessel::exporting {
namespace {

/// Mixes all bits of `value` (the finaliser of the splitmix64 generator).
std::uint64_t Mix(std::uint64_t value) noexcept
{
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

/// A triangularly distributed number between -1 and 1: the difference of two uniform ones.
double TriangularNoise(std::int64_t position, std::int32_t channel) noexcept
{
    constexpr double kUnit = 1.0 / 4294967296.0;
    const std::uint64_t bits =
        Mix(Mix(static_cast<std::uint64_t>(position)) + static_cast<std::uint64_t>(channel));
    return (static_cast<double>(bits >> 32) - static_cast<double>(bits & 0xFFFFFFFFU)) * kUnit;
}

} // namespace

SampleQuantizer::SampleQuantizer(int bits, Dither dither) noexcept
    : mScale(std::ldexp(1.0, bits - 1)), mLowest(-mScale), mHighest(mScale - 1.0), mShift(bits == 24 ? 8 : 0),
      mDither(dither)
{
}

std::int32_t SampleQuantizer::operator()(float sample, std::int64_t position,
                                         std::int32_t channel) const noexcept
{
    double scaled = std::isnan(sample) ? 0.0 : static_cast<double>(sample) * mScale;
    if (mDither == Dither::Triangular) {
        scaled += TriangularNoise(position, channel);
    }
    const double code = std::clamp(std::floor(scaled + 0.5), mLowest, mHighest);
    return static_cast<std::int32_t>(code) * (1 << mShift);
}

} // namespace tessel::exporting
