/// What the sound tests share: a host's buffers with guards around them, and random requests that repeat.
#pragma once

#include <ImporterTessel/audio/AudioRequest.h>
#include <ImporterTessel/audio/SineSpan.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <span>
#include <string>
#include <vector>

namespace audiotest {

inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

/// A value that no generator makes, about -1e8.
inline constexpr std::uint32_t kPoison = 0xCCCCCCCC;

inline std::uint32_t Bits(float value)
{
    return std::bit_cast<std::uint32_t>(value);
}
inline std::uint64_t Bits(double value)
{
    return std::bit_cast<std::uint64_t>(value);
}

/// Floats between two of the same sign, 0 for equal ones.
inline std::uint32_t UnitsApart(float a, float b)
{
    const std::uint32_t x = Bits(a);
    const std::uint32_t y = Bits(b);
    return x > y ? x - y : y - x;
}

/// The run's seed: TESSEL_TEST_SEED, else a new one; failures print it.
inline std::uint64_t Seed()
{
    static const std::uint64_t sSeed = [] {
        const char* const given = std::getenv("TESSEL_TEST_SEED"); // NOLINT(concurrency-mt-unsafe)
        return given != nullptr ? std::strtoull(given, nullptr, 10) : std::uint64_t{std::random_device{}()};
    }();
    return sSeed;
}
inline std::string SeedText()
{
    return "repeat with TESSEL_TEST_SEED=" + std::to_string(Seed());
}

/// Planar buffers as a host hands them, poisoned, with a guard before and behind each.
class Buffers {
public:
    Buffers(std::int32_t channelCount, std::uint32_t sampleCount) : mSampleCount(sampleCount)
    {
        for (std::int32_t channel = 0; channel < channelCount; ++channel) {
            mStorage.emplace_back(sampleCount + 2 * kGuard, std::bit_cast<float>(kPoison));
            mChannels.push_back(mStorage.back().data() + kGuard);
        }
    }

    [[nodiscard]] float* const* Channels() const { return mChannels.data(); }
    [[nodiscard]] std::uint32_t SampleCount() const { return mSampleCount; }
    /// Takes a channel's buffer away, as a host that does not want it.
    void Withhold(std::int32_t channel) { mChannels[static_cast<std::size_t>(channel)] = nullptr; }

    [[nodiscard]] std::span<const float> operator[](std::int32_t channel) const
    {
        return std::span(mStorage[static_cast<std::size_t>(channel)]).subspan(kGuard, mSampleCount);
    }
    [[nodiscard]] bool IsUntouched(std::int32_t channel) const
    {
        return CountPoison((*this)[channel]) == mSampleCount;
    }
    [[nodiscard]] bool IsWritten(std::int32_t channel) const { return CountPoison((*this)[channel]) == 0; }
    [[nodiscard]] bool GuardsStand() const
    {
        for (const auto& storage : mStorage) {
            if (CountPoison(std::span(storage).first(kGuard)) != kGuard ||
                CountPoison(std::span(storage).last(kGuard)) != kGuard) {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr std::size_t kGuard = 64;

    static std::size_t CountPoison(std::span<const float> samples)
    {
        std::size_t count = 0;
        for (const float sample : samples) {
            count += Bits(sample) == kPoison ? 1U : 0U;
        }
        return count;
    }

    std::uint32_t mSampleCount;
    std::vector<std::vector<float>> mStorage;
    std::vector<float*> mChannels;
};

inline qelmediatypes::FrameRate RateOf(float samplesPerSecond)
{
    return qelmediatypes::SampleDuration(samplesPerSecond);
}

inline ImporterTessel::AudioRequest RequestAt(std::int64_t position, qelmediatypes::FrameRate rate,
                                              const Buffers& buffers)
{
    return {rate, qelmediatypes::TickTime(position, rate), buffers.Channels(), buffers.SampleCount()};
}

inline std::vector<float> SineFrom(std::int64_t position, std::size_t count, ImporterTessel::Tone tone,
                                   qelmediatypes::FrameRate rate)
{
    std::vector<float> samples(count);
    ImporterTessel::FillSineSpan(rate, qelmediatypes::TickTime(position, rate), tone, samples);
    return samples;
}

/// Whether the samples are equal bit for bit; says where they differ first.
inline ::testing::AssertionResult SameBits(std::span<const float> actual, std::span<const float> expected)
{
    if (actual.size() != expected.size()) {
        return ::testing::AssertionFailure() << actual.size() << " samples, not " << expected.size();
    }
    for (std::size_t k = 0; k < actual.size(); ++k) {
        if (Bits(actual[k]) != Bits(expected[k])) {
            return ::testing::AssertionFailure()
                   << "sample " << k << " is " << actual[k] << ", not " << expected[k];
        }
    }
    return ::testing::AssertionSuccess();
}

/// Whether every sample has the bits of +0.
inline ::testing::AssertionResult IsSilent(std::span<const float> samples)
{
    return SameBits(samples, std::vector<float>(samples.size(), 0.0F));
}

/// Whether the samples differ by at most `bound`. Silence is exact, so compare a silent stretch with
/// `IsSilent`.
inline ::testing::AssertionResult IsNear(std::span<const float> actual, std::span<const float> expected,
                                         double bound)
{
    for (std::size_t k = 0; k < actual.size(); ++k) {
        const double distance = static_cast<double>(actual[k]) - static_cast<double>(expected[k]);
        if (!(distance <= bound && distance >= -bound)) {
            return ::testing::AssertionFailure() << "sample " << k << " is " << actual[k] << ", not within "
                                                 << bound << " of " << expected[k];
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace audiotest
