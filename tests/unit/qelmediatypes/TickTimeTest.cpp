#include "WideIntegers.h"

#include <kestrel/qelmediatypes/TickTime.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace qelmediatypes;
using test::Clamped;
using test::Wide;

constexpr std::int64_t kUnusable = FrameRate::kUnusableTicks;

/// Rounded toward minus infinity; `divisor` is positive.
Wide FloorDivided(Wide number, Wide divisor)
{
    Wide quotient = number / divisor;
    while (quotient * divisor > number) {
        --quotient;
    }
    return quotient;
}

TEST(FrameRate, HasNoFramesWhenNotPositiveOrUnusable)
{
    for (const std::int64_t ticks :
         {std::int64_t{0}, std::int64_t{-1}, kUnusable, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_FALSE(FrameRate{ticks}.HasFrames()) << ticks;
    }
    EXPECT_TRUE(FrameRate{1}.HasFrames());
    EXPECT_TRUE(FrameRate{kUnusable - 1}.HasFrames());
    EXPECT_FALSE(FrameRate{}.HasFrames());
}

TEST(TickTime, CountsNoFramesAtARateOfZeroOrLess)
{
    for (const std::int64_t ticks :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_EQ(TickTime(kTicksPerSecond).ToFrame32(FrameRate{ticks}), 0) << ticks;
        EXPECT_EQ(TickTime(kTicksPerSecond).ToFrame64(FrameRate{ticks}), 0) << ticks;
        EXPECT_EQ(TickTime(kTicksPerSecond).AlignToFrame(FrameRate{ticks}), TickTime()) << ticks;
    }
}

TEST(TickTime, CountsFramesOfTheUnusableRateLikeThoseOfAnyOther)
{
    constexpr FrameRate kRate{kUnusable};
    const TickTime oneFrame = TickTime().AddFrames(1, kRate);
    EXPECT_EQ(oneFrame.ToFrame32(kRate), 1);
    EXPECT_EQ(oneFrame.ToFrame64(kRate), 1);
    EXPECT_EQ(oneFrame.AlignToFrame(kRate), oneFrame);
    EXPECT_EQ(TickTime(kUnusable - 1).ToFrame64(kRate), 0);
    EXPECT_EQ(TickTime(-1).ToFrame64(kRate), -1);
    EXPECT_EQ(TickTime(kTicksPerSecond).AlignToFrame(kRate), TickTime());
}

TEST(TickTime, FramesEqualExactFloorDivisionKeptInRange)
{
    const std::vector<std::int64_t> times = test::InterestingIntegers(2, 300);
    for (const std::int64_t ticks : times) {
        for (const std::int64_t ticksPerFrame : test::InterestingIntegers(3, 100)) {
            const FrameRate rate{ticksPerFrame};
            if (ticksPerFrame <= 0) {
                continue;
            }
            const Wide frame = FloorDivided(ticks, ticksPerFrame);
            ASSERT_EQ(TickTime(ticks).ToFrame64(rate), Clamped<std::int64_t>(frame))
                << ticks << " / " << ticksPerFrame;
            ASSERT_EQ(TickTime(ticks).ToFrame32(rate), Clamped<std::int32_t>(frame))
                << ticks << " / " << ticksPerFrame;
        }
    }
}

TEST(TickTime, AlignsToTheNearestBoundaryAndToTheLaterOfTwo)
{
    for (const std::int64_t ticks : test::InterestingIntegers(4, 300)) {
        for (const std::int64_t ticksPerFrame : test::InterestingIntegers(5, 100)) {
            const FrameRate rate{ticksPerFrame};
            if (ticksPerFrame <= 0) {
                continue;
            }
            const Wide before = FloorDivided(ticks, ticksPerFrame) * ticksPerFrame;
            const Wide after = before + ticksPerFrame;
            const Wide nearest = after - ticks <= ticks - before ? after : before;
            const Wide expected = before == ticks ? Wide{ticks} : nearest;
            ASSERT_EQ(TickTime(ticks).AlignToFrame(rate).Ticks(), Clamped<std::int64_t>(expected))
                << ticks << " to frames of " << ticksPerFrame;
        }
    }
}

TEST(TickTime, AlignedTimesStayWhereTheyAre)
{
    for (const std::int64_t ticksPerFrame : {1LL, 2LL, 5LL, 8'467'200'000LL, 8'475'667'200LL}) {
        const FrameRate rate{ticksPerFrame};
        for (std::int64_t frame = -1000; frame <= 1000; ++frame) {
            const TickTime time(frame, rate);
            ASSERT_EQ(time.AlignToFrame(rate), time);
            ASSERT_EQ(time.ToFrame64(rate), frame);
        }
    }
}

TEST(TickTime, ArithmeticEqualsExactArithmeticKeptInRange)
{
    const std::vector<std::int64_t> numbers = test::InterestingIntegers(6, 40);
    for (const std::int64_t a : numbers) {
        for (const std::int64_t b : numbers) {
            ASSERT_EQ((TickTime(a) + TickTime(b)).Ticks(), Clamped<std::int64_t>(Wide{a} + b));
            ASSERT_EQ((TickTime(a) - TickTime(b)).Ticks(), Clamped<std::int64_t>(Wide{a} - b));
            ASSERT_EQ(TickTime(a, FrameRate{b}).Ticks(), Clamped<std::int64_t>(Wide{a} * b));
            for (const std::int64_t start :
                 {-kTicksPerSecond, std::int64_t{0}, std::numeric_limits<std::int64_t>::min()}) {
                ASSERT_EQ(TickTime(start).AddFrames(a, FrameRate{b}).Ticks(),
                          Clamped<std::int64_t>(Wide{a} * b + start))
                    << start << " + " << a << " frames of " << b;
            }
        }
    }
}

TEST(SampleDuration, DividesTheUsualRatesWithoutRemainder)
{
    for (const int rate : {8000, 11'025, 16'000, 22'050, 32'000, 44'100, 48'000, 88'200, 96'000, 192'000}) {
        EXPECT_EQ(SampleDuration(static_cast<float>(rate)).ticksPerFrame * rate, kTicksPerSecond) << rate;
    }
}

TEST(SampleDuration, TruncatesTowardZero)
{
    // 254016000000 / 7 = 36288000000 exactly; / 11 = 23092363636.36; / 0.3 as a float is below / 0.3.
    EXPECT_EQ(SampleDuration(7.0F).ticksPerFrame, 36'288'000'000);
    EXPECT_EQ(SampleDuration(11.0F).ticksPerFrame, 23'092'363'636);
    EXPECT_EQ(SampleDuration(-11.0F).ticksPerFrame, -23'092'363'636);
    EXPECT_EQ(SampleDuration(std::numeric_limits<float>::max()).ticksPerFrame, 0);
    EXPECT_EQ(SampleDuration(std::numeric_limits<float>::infinity()).ticksPerFrame, 0);
    EXPECT_EQ(SampleDuration(-std::numeric_limits<float>::infinity()).ticksPerFrame, 0);
}

TEST(SampleDuration, IsUnusableForZeroAndNaN)
{
    EXPECT_EQ(SampleDuration(0.0F).ticksPerFrame, kUnusable);
    EXPECT_EQ(SampleDuration(-0.0F).ticksPerFrame, kUnusable);
    EXPECT_EQ(SampleDuration(std::numeric_limits<float>::quiet_NaN()).ticksPerFrame, kUnusable);
}

TEST(SampleDuration, SaturatesForTinyRates)
{
    constexpr float kTiny = std::numeric_limits<float>::denorm_min();
    EXPECT_EQ(SampleDuration(kTiny).ticksPerFrame, std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(SampleDuration(-kTiny).ticksPerFrame, std::numeric_limits<std::int64_t>::min());
}

} // namespace
