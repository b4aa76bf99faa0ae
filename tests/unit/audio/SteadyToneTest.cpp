#include "AudioTestSupport.h"

#include <ImporterTessel/audio/SteadyTone.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using audiotest::Buffers;
using audiotest::RateOf;
using audiotest::RequestAt;
using ImporterTessel::SynthesizeSteadyTone;
using ImporterTessel::Tone;

constexpr Tone kTone{1000.0F, 0.25F};

TEST(SteadyTone, IsTheSameOnEveryChannel)
{
    for (const std::int32_t channelCount : {1, 2, 6, 8, 64}) {
        const Buffers buffers(channelCount, 5000);
        SynthesizeSteadyTone(RequestAt(123, RateOf(48000.0F), buffers), kTone, channelCount);
        for (std::int32_t channel = 0; channel < channelCount; ++channel) {
            EXPECT_TRUE(
                audiotest::SameBits(buffers[channel], audiotest::SineFrom(123, 5000, kTone, RateOf(48000.0F))));
        }
        EXPECT_TRUE(buffers.GuardsStand());
    }
}

TEST(SteadyTone, OfOneChannelWritesChannelZeroOnly)
{
    const Buffers buffers(6, 100);
    SynthesizeSteadyTone(RequestAt(0, RateOf(48000.0F), buffers), kTone, 1);
    EXPECT_TRUE(buffers.IsWritten(0));
    for (std::int32_t channel = 1; channel < 6; ++channel) {
        EXPECT_TRUE(buffers.IsUntouched(channel)) << channel;
    }
}

TEST(SteadyTone, OfNoChannelsOrFewerWritesNothing)
{
    for (const std::int32_t channelCount : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        const Buffers buffers(6, 100);
        SynthesizeSteadyTone(RequestAt(0, RateOf(48000.0F), buffers), kTone, channelCount);
        for (std::int32_t channel = 0; channel < 6; ++channel) {
            EXPECT_TRUE(buffers.IsUntouched(channel)) << channel;
        }
    }
}

TEST(SteadyTone, PassesOverChannelsWithoutABuffer)
{
    Buffers buffers(4, 100);
    buffers.Withhold(0);
    buffers.Withhold(2);
    SynthesizeSteadyTone(RequestAt(7, RateOf(48000.0F), buffers), kTone, 4);
    EXPECT_TRUE(audiotest::SameBits(buffers[1], audiotest::SineFrom(7, 100, kTone, RateOf(48000.0F))));
    EXPECT_TRUE(audiotest::SameBits(buffers[3], buffers[1]));
    EXPECT_TRUE(buffers.IsUntouched(0));
    EXPECT_TRUE(buffers.IsUntouched(2));
}

} // namespace
