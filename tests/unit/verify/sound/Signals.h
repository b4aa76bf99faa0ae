/// Signals with known truth for the sound judges' tests, from the C library's sine.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace tessel::verify::judge::test {

constexpr double kRate = 48000;

/// A tone of `amplitude` whose sine starts at `phase` (radians) at sample 0.
inline std::vector<float> Tone(double hertz, double amplitude, std::size_t count, double phase = 0)
{
    std::vector<float> samples(count);
    for (std::size_t n = 0; n < count; ++n) {
        const double angle = 2 * std::numbers::pi * hertz / kRate * static_cast<double>(n) + phase;
        samples[n] = static_cast<float>(amplitude * std::sin(angle));
    }
    return samples;
}

inline std::vector<float> Silence(std::size_t count)
{
    return std::vector<float>(count, 0.0F);
}

inline void Append(std::vector<float>& samples, const std::vector<float>& more)
{
    samples.insert(samples.end(), more.begin(), more.end());
}

/// Uniform noise in -1..1, always the same: a 64-bit linear congruential generator (Knuth's constants).
class Noise {
public:
    double Next() noexcept
    {
        mState = mState * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(mState >> 11U) / static_cast<double>(1ULL << 52U) - 1;
    }

private:
    std::uint64_t mState = 1;
};

} // namespace tessel::verify::judge::test
