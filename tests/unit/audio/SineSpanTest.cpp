#include "AudioTestSupport.h"

#include <ImporterTessel/audio/SineSpan.h>
#include <ImporterTessel/audio/VectorSine.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <gtest/gtest.h>
#include <support/ReferenceSine.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace {

using audiotest::Bits;
using audiotest::RateOf;
using audiotest::SineFrom;
using ImporterTessel::FillSineSpan;
using ImporterTessel::SpanShape;
using ImporterTessel::Tone;
using qelmediatypes::FrameRate;
using qelmediatypes::TickTime;

using audiotest::kInfinity;
using audiotest::kNaN;

std::vector<float> ReferenceFrom(std::int64_t position, std::size_t count, Tone tone, FrameRate rate)
{
    std::vector<float> samples(count);
    test::FillReferenceSine(rate, TickTime(position, rate), tone, samples);
    return samples;
}

TEST(SineSpan, BeginsAtPhaseZeroAtSampleZero)
{
    for (const float frequency : {80.0F, 1000.0F, -1000.0F, 88.5F}) {
        EXPECT_EQ(Bits(SineFrom(0, 1, {frequency, 0.25F}, RateOf(48000.0F))[0]), Bits(0.0F));
    }
}

// 48000 / 1000 samples to a cycle: the quarter is at sample 12, the half at 24. The rounded two pi turns it
// by 1.75e-7 × cycles × amplitude at most.
TEST(SineSpan, PeaksAQuarterCycleIn)
{
    const std::vector<float> sine = SineFrom(0, 49, {1000.0F, 0.25F}, RateOf(48000.0F));
    EXPECT_EQ(sine[12], 0.25F);
    EXPECT_NEAR(sine[24], 0.0F, 5e-8F);
    EXPECT_EQ(sine[36], -0.25F);
    EXPECT_NEAR(sine[4], 0.125F, 1e-8F); // sin(30°) = 1/2
}

TEST(SineSpan, TakesItsPhaseFromTheAbsoluteSample)
{
    constexpr double kTwoPi = 6.2831854820251465;
    for (const std::int64_t position : {1, 47, 48, 12'345, 1'728'000'000, -1, -12'345}) {
        const double cycles = static_cast<double>(position) * (440.0 / 48000.0);
        double whole = 0.0;
        const double phase = std::modf(cycles, &whole) * kTwoPi;
        EXPECT_EQ(SineFrom(position, 1, {440.0F, 0.5F}, RateOf(48000.0F))[0],
                  static_cast<float>(std::sin(phase) * 0.5))
            << position;
    }
}

TEST(SineSpan, EqualsTheReferenceInAnyRequest)
{
    std::mt19937_64 random(audiotest::Seed());
    std::uniform_int_distribution<std::int64_t> position(-4'000'000'000, 4'000'000'000);
    std::uniform_real_distribution<float> frequency(-30'000.0F, 30'000.0F);
    std::uniform_int_distribution<std::size_t> length(0, 20'000);
    constexpr std::array kRates{8000.0F, 11025.0F, 44100.0F, 47999.7F, 48000.0F, 96000.0F, 192000.0F};
    std::size_t differences = 0;
    std::size_t total = 0;
    for (int round = 0; round < 300; ++round) {
        const FrameRate rate = RateOf(kRates[random() % kRates.size()]);
        const std::int64_t start = position(random);
        const Tone tone{frequency(random), 0.25F};
        const std::size_t count = length(random);
        const std::vector<float> actual = SineFrom(start, count, tone, rate);
        const std::vector<float> expected = ReferenceFrom(start, count, tone, rate);
        for (std::size_t k = 0; k < count; ++k) {
            ASSERT_LE(audiotest::UnitsApart(actual[k], expected[k]), 1U)
                << "sample " << k << " of " << tone.frequency << " Hz from " << start << "; "
                << audiotest::SeedText();
            differences += Bits(actual[k]) != Bits(expected[k]) ? 1U : 0U;
        }
        total += count;
    }
    EXPECT_LE(differences, 4U) << "of " << total << "; " << audiotest::SeedText();
}

// The rounded two pi advances the phase of a running span by 1.75e-7 radians too much in each cycle. A span
// that starts later begins without this error.
TEST(SineSpan, JoinsTheNextOneWithinWhatTheRoundedTwoPiImplies)
{
    std::mt19937_64 random(audiotest::Seed());
    std::uniform_real_distribution<float> frequency(20.0F, 20'000.0F);
    std::uniform_int_distribution<std::int64_t> position(-1'000'000'000, 1'000'000'000);
    for (int round = 0; round < 100; ++round) {
        const FrameRate rate = RateOf(48000.0F);
        const Tone tone{frequency(random), 0.25F};
        const std::int64_t start = position(random);
        const std::size_t cut = 1 + random() % 40'000;
        const std::vector<float> whole = SineFrom(start, cut + 500, tone, rate);
        const std::vector<float> rest = SineFrom(start + static_cast<std::int64_t>(cut), 500, tone, rate);
        const double cycles =
            std::ceil(static_cast<double>(cut) * static_cast<double>(tone.frequency) / 48000.0);
        // The products' own rounding, at most 2e-7 of a cycle at such positions, and the float's come on top.
        const double bound = 0.25 * (1.75e-7 * cycles + 2e-6);
        EXPECT_TRUE(audiotest::IsNear(std::span(whole).subspan(cut), rest, bound))
            << tone.frequency << " Hz from " << start << " cut at " << cut << "; " << audiotest::SeedText();
    }
}

TEST(SineSpan, AtAConstantLevelIsTheAmplitudeItself)
{
    std::vector<float> samples(1000, 7.0F);
    FillSineSpan(RateOf(48000.0F), TickTime(5), {1000.0F, 0.3F}, samples, SpanShape::ConstantLevel);
    EXPECT_TRUE(std::ranges::all_of(samples, [](float sample) { return sample == 0.3F; }));
}

// 1000 Hz sampled once a second: 6283 radians a sample pass the vector range at sample 2670.
TEST(SineSpan, BeyondTheVectorRangeIsTheReferenceBitForBit)
{
    const FrameRate rate = RateOf(1.0F);
    const Tone tone{1000.7F, 0.25F};
    const std::vector<float> actual = SineFrom(3, 200'000, tone, rate);
    const std::vector<float> expected = ReferenceFrom(3, 200'000, tone, rate);
    const auto outside = static_cast<std::ptrdiff_t>(
        std::ceil(ImporterTessel::kLargestVectorPhase / (1000.7 * 6.2831854820251465)) + 1);
    EXPECT_TRUE(audiotest::SameBits(std::span(actual).subspan(static_cast<std::size_t>(outside)),
                                    std::span(expected).subspan(static_cast<std::size_t>(outside))));
    for (std::size_t k = 0; k < actual.size(); ++k) {
        ASSERT_LE(audiotest::UnitsApart(actual[k], expected[k]), 1U) << k;
    }
}

TEST(SineSpan, OfARateThatIsZeroIsNotANumber)
{
    for (const float sampleRate : {0.0F, -0.0F, kNaN}) {
        for (const float sample : SineFrom(1000, 10, {1000.0F, 0.25F}, RateOf(sampleRate))) {
            EXPECT_TRUE(std::isnan(sample)) << sampleRate;
        }
    }
}

// Ticks are too coarse for such rates: no ticks a sample, an infinite rate, a step of no cycles.
TEST(SineSpan, OfARateBeyondTheTicksIsSilent)
{
    for (const float sampleRate : {1e12F, 3e38F, kInfinity}) {
        EXPECT_TRUE(audiotest::IsSilent(SineFrom(1000, 1000, {1000.0F, 0.25F}, RateOf(sampleRate))))
            << sampleRate;
    }
}

// No frames at a negative rate: every span starts at sample 0, and runs backwards.
TEST(SineSpan, OfANegativeRateRunsBackwardsFromPhaseZero)
{
    const std::vector<float> forwards = SineFrom(0, 1000, {1000.0F, 0.25F}, RateOf(48000.0F));
    const std::vector<float> backwards = SineFrom(77, 1000, {1000.0F, 0.25F}, RateOf(-48000.0F));
    for (std::size_t k = 0; k < forwards.size(); ++k) {
        ASSERT_EQ(backwards[k], -forwards[k]) << k;
    }
}

TEST(SineSpan, OfAnyNumbersIsTheReference)
{
    for (const float sampleRate :
         {0.0F, 1e-30F, 1e12F, 3e38F, -48000.0F, kNaN, kInfinity, -kInfinity, 48000.0F}) {
        for (const float frequency : {0.0F, -0.0F, 1000.0F, -1000.0F, 3e38F, 1e-45F, kNaN, kInfinity}) {
            for (const float amplitude : {0.25F, -0.25F, 0.0F, kNaN, kInfinity, 3e38F}) {
                for (const std::int64_t position : {std::numeric_limits<std::int64_t>::min(), std::int64_t{0},
                                                    std::numeric_limits<std::int64_t>::max()}) {
                    const FrameRate rate = RateOf(sampleRate);
                    const Tone tone{frequency, amplitude};
                    const std::vector<float> actual = SineFrom(position, 700, tone, rate);
                    const std::vector<float> expected = ReferenceFrom(position, 700, tone, rate);
                    for (std::size_t k = 0; k < actual.size(); ++k) {
                        ASSERT_TRUE(std::isnan(expected[k])
                                        ? std::isnan(actual[k])
                                        : audiotest::UnitsApart(actual[k], expected[k]) <= 1U)
                            << "sample " << k << " at rate " << sampleRate << ", " << frequency
                            << " Hz, amplitude " << amplitude << " from " << position << " is " << actual[k]
                            << ", not " << expected[k];
                    }
                }
            }
        }
    }
}

TEST(SineSpan, WritesNoSampleOutsideItsSpan)
{
    for (std::uint32_t count = 0; count < 1100; ++count) {
        const audiotest::Buffers buffers(1, count);
        FillSineSpan(RateOf(48000.0F), TickTime(0), {1000.0F, 0.25F}, std::span(buffers.Channels()[0], count));
        ASSERT_TRUE(buffers.GuardsStand()) << count;
        ASSERT_TRUE(buffers.IsWritten(0)) << count;
    }
}

TEST(SamplesPerSecond, IsTheTicksOfASecondByThoseOfASample)
{
    EXPECT_EQ(ImporterTessel::SamplesPerSecond(FrameRate{5'292'000}), 48000.0);
    EXPECT_EQ(ImporterTessel::SamplesPerSecond(FrameRate{5'760'000}), 44100.0);
    EXPECT_EQ(ImporterTessel::SamplesPerSecond(FrameRate{}), 0.0);
    EXPECT_EQ(ImporterTessel::SamplesPerSecond(FrameRate{0}), std::numeric_limits<double>::infinity());
    EXPECT_EQ(ImporterTessel::SamplesPerSecond(FrameRate{-5'292'000}), -48000.0);
}

} // namespace
