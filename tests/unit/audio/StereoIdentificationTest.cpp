#include "AudioTestSupport.h"

#include <ImporterTessel/audio/StereoIdentification.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace {

using audiotest::Buffers;
using audiotest::IsSilent;
using audiotest::RateOf;
using audiotest::RequestAt;
using audiotest::SameBits;
using audiotest::SineFrom;
using ImporterTessel::SynthesizeStereoIdentification;
using ImporterTessel::Tone;

constexpr Tone kStereoTone{1000.0F, 0.125F};
constexpr std::int64_t kCycle = 144'000;    // 3 s at 48000 Hz
constexpr std::int64_t kSounding = 132'000; // 2.75 s

Buffers Rendered(std::int64_t position, std::uint32_t count, float frequency = 1000.0F,
                 float sampleRate = 48000.0F, std::int32_t channelCount = 2)
{
    Buffers buffers(channelCount, count);
    SynthesizeStereoIdentification(RequestAt(position, RateOf(sampleRate), buffers), frequency);
    EXPECT_TRUE(buffers.GuardsStand());
    return buffers;
}

TEST(StereoIdentification, SoundsOnTheRightThroughout)
{
    const Buffers buffers = Rendered(1234, 300'000);
    EXPECT_TRUE(SameBits(buffers[1], SineFrom(1234, 300'000, kStereoTone, RateOf(48000.0F))));
}

TEST(StereoIdentification, FallsSilentOnTheLeftForTheLastQuarterSecondOfEveryThree)
{
    const Buffers buffers = Rendered(0, 3 * kCycle);
    for (std::int64_t cycle = 0; cycle < 3; ++cycle) {
        const std::span left = buffers[0].subspan(static_cast<std::size_t>(cycle * kCycle), kCycle);
        EXPECT_TRUE(SameBits(left.first(kSounding),
                             SineFrom(cycle * kCycle, kSounding, kStereoTone, RateOf(48000.0F))));
        EXPECT_TRUE(IsSilent(left.subspan(kSounding)));
    }
}

TEST(StereoIdentification, HasItsOtherToneAt400Hertz)
{
    const Buffers buffers = Rendered(0, 5000, 400.0F);
    EXPECT_TRUE(SameBits(buffers[0], SineFrom(0, 5000, {400.0F, 0.125F}, RateOf(48000.0F))));
    EXPECT_TRUE(SameBits(buffers[1], buffers[0]));
}

TEST(StereoIdentification, ThatStartsInTheSilenceIsSilentUpToTheNextCycle)
{
    const Buffers buffers = Rendered(kSounding + 5000, 10'000);
    EXPECT_TRUE(IsSilent(buffers[0].first(7000)));
    EXPECT_TRUE(SameBits(buffers[0].subspan(7000), SineFrom(kCycle, 3000, kStereoTone, RateOf(48000.0F))));
}

TEST(StereoIdentification, SplitsARequestThatStraddlesTheSilenceAtItsBorders)
{
    const Buffers buffers = Rendered(kSounding - 10, 12'020);
    EXPECT_TRUE(SameBits(buffers[0].first(10), SineFrom(kSounding - 10, 10, kStereoTone, RateOf(48000.0F))));
    EXPECT_TRUE(IsSilent(buffers[0].subspan(10, 12'000)));
    EXPECT_TRUE(SameBits(buffers[0].subspan(12'010), SineFrom(kCycle, 10, kStereoTone, RateOf(48000.0F))));
}

TEST(StereoIdentification, CountsItsCyclesBackwardsFromTimeZeroToo)
{
    const Buffers buffers = Rendered(-kCycle, 2 * kCycle);
    EXPECT_TRUE(
        SameBits(buffers[0].first(kSounding), SineFrom(-kCycle, kSounding, kStereoTone, RateOf(48000.0F))));
    EXPECT_TRUE(IsSilent(buffers[0].subspan(kSounding, kCycle - kSounding)));
    EXPECT_TRUE(
        SameBits(buffers[0].subspan(kCycle, kSounding), SineFrom(0, kSounding, kStereoTone, RateOf(48000.0F))));
}

TEST(StereoIdentification, LeavesTheChannelsBeyondItsTwoAlone)
{
    const Buffers buffers = Rendered(0, 20'000, 1000.0F, 48000.0F, 8);
    for (std::int32_t channel = 2; channel < 8; ++channel) {
        EXPECT_TRUE(buffers.IsUntouched(channel)) << channel;
    }
}

TEST(StereoIdentification, PassesOverAChannelWithoutABuffer)
{
    for (const std::int32_t withheld : {0, 1}) {
        Buffers buffers(2, 5000);
        buffers.Withhold(withheld);
        SynthesizeStereoIdentification(RequestAt(0, RateOf(48000.0F), buffers), 1000.0F);
        EXPECT_TRUE(buffers.IsWritten(1 - withheld));
        EXPECT_TRUE(buffers.IsUntouched(withheld));
    }
}

// 11025 samples a second: the silence begins at 2.75 s, between the samples 30318 and 30319, and ends at sample
// 33075.
TEST(StereoIdentification, SoundsInEverySampleBeforeABorderBetweenSamplesAndInNoneBehindIt)
{
    constexpr float kRate = 11025.0F;
    for (const std::int64_t start : {std::int64_t{0}, std::int64_t{30'000}, std::int64_t{30'318}}) {
        const Buffers buffers = Rendered(start, static_cast<std::uint32_t>(33'100 - start), 1000.0F, kRate);
        const auto left = [&](std::int64_t sample) {
            return buffers[0][static_cast<std::size_t>(sample - start)];
        };
        // Sample 30318 is a segment of its own: it takes its phase from its own time.
        EXPECT_EQ(left(30'318), SineFrom(30'318, 1, kStereoTone, RateOf(kRate))[0]);
        EXPECT_GT(std::abs(left(30'318)), 0.01F);
        EXPECT_TRUE(IsSilent(buffers[0].subspan(static_cast<std::size_t>(30'319 - start), 33'075 - 30'319)));
        EXPECT_TRUE(SameBits(buffers[0].subspan(static_cast<std::size_t>(33'075 - start)),
                             SineFrom(33'075, 25, kStereoTone, RateOf(kRate))));
    }
}

// 11025 Hz: a quarter second is 2756.25 samples. A sample belongs to the stretch that its time lies in,
// wherever the request that asks for it begins.
TEST(StereoIdentification, HasTheSameBordersHoweverItIsCut)
{
    std::mt19937_64 random(audiotest::Seed());
    for (const float sampleRate : {8000.0F, 11025.0F, 44100.0F, 47999.0F}) {
        const auto cycle = static_cast<std::int64_t>(sampleRate) * 3;
        const std::int64_t start = 10 * cycle - 500;
        const auto count = static_cast<std::uint32_t>(cycle + 1000);
        const Buffers whole = Rendered(start, count, 1000.0F, sampleRate);
        for (std::uint32_t offset = 0; offset < count;) {
            const auto length = std::min(count - offset, static_cast<std::uint32_t>(1 + random() % 4000));
            const Buffers part = Rendered(start + offset, length, 1000.0F, sampleRate);
            // 2.75 s of 1000 Hz have 2750 cycles, which turn by 1.75e-7 radians each.
            EXPECT_TRUE(audiotest::IsNear(part[0], whole[0].subspan(offset, length), 0.125 * 1.75e-7 * 2751));
            for (std::uint32_t k = 0; k < length; ++k) {
                const std::int64_t sample = start + offset + k;
                const double time = static_cast<double>(sample) *
                                    static_cast<double>(RateOf(sampleRate).ticksPerFrame) / 254'016'000'000.0;
                const bool silent =
                    time - 3.0 * static_cast<double>(static_cast<std::int64_t>(time / 3.0)) >= 2.75;
                if (silent) {
                    ASSERT_EQ(audiotest::Bits(part[0][k]), 0U) << sample << "; " << audiotest::SeedText();
                    ASSERT_EQ(audiotest::Bits(whole[0][offset + k]), 0U) << sample;
                }
            }
            offset += length;
        }
    }
}

} // namespace
