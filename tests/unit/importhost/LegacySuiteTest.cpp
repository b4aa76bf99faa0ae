#include <kestrel/importhost/LegacySuite.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <numeric>
#include <random>

namespace {

using importhost::TicksFromTimeScale;
using importhost::TimeScaleFromTicks;
using importhost::TimeScalePair;
using qelmediatypes::kTicksPerSecond;
using Wide = __int128;

constexpr std::int32_t kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int64_t kMax64 = std::numeric_limits<std::int64_t>::max();

struct KnownRate {
    std::int32_t numerator;
    std::int32_t denominator;
};

// The frame rates that clips usually have, as reduced fractions.
constexpr KnownRate kKnownRates[] = {{10, 1},       {12, 1}, {25, 2},       {15, 1},  {24000, 1001},
                                     {24, 1},       {25, 1}, {30000, 1001}, {30, 1},  {50, 1},
                                     {60000, 1001}, {60, 1}, {100, 1},      {1000, 1}};

/// T × size / scale to the nearest, in 128 bits.
std::int64_t Reference(TimeScalePair pair)
{
    if (pair.timeScale <= 0 || pair.sampleSize <= 0) {
        return 0;
    }
    const Wide doubled = Wide{kTicksPerSecond} * pair.sampleSize * 2;
    const Wide ticks = (doubled / pair.timeScale + 1) / 2;
    return ticks > kMax64 ? 0 : static_cast<std::int64_t>(ticks);
}

TEST(LegacySuite, TheKnownRatesGiveTheirPairAndComeBack)
{
    for (const KnownRate rate : kKnownRates) {
        const Wide ticks = Wide{kTicksPerSecond} * rate.denominator / rate.numerator;
        ASSERT_EQ(ticks * rate.numerator, Wide{kTicksPerSecond} * rate.denominator) << "divides exactly";
        const TimeScalePair pair = TimeScaleFromTicks(static_cast<std::int64_t>(ticks));
        EXPECT_EQ(pair.timeScale, rate.numerator);
        EXPECT_EQ(pair.sampleSize, rate.denominator);
        EXPECT_EQ(TicksFromTimeScale(pair), static_cast<std::int64_t>(ticks));
    }
}

TEST(LegacySuite, TicksEqualTheSumIn128Bits)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 200'000; ++i) {
        // Shifted so that small and large numbers come equally often.
        const auto number = [&random] {
            return static_cast<std::int32_t>((random() & 0x7FFFFFFF) >> (random() % 31));
        };
        const TimeScalePair pair{number(), number()};
        ASSERT_EQ(TicksFromTimeScale(pair), Reference(pair)) << pair.timeScale << " / " << pair.sampleSize;
    }
}

TEST(LegacySuite, TicksAtTheEndsOfTheRange)
{
    for (const std::int32_t scale : {1, 2, 3, kMax32 - 1, kMax32}) {
        for (const std::int32_t size : {1, 2, 3, kMax32 - 1, kMax32}) {
            EXPECT_EQ(TicksFromTimeScale({scale, size}), Reference({scale, size})) << scale << " / " << size;
        }
    }
}

TEST(LegacySuite, WhatIsNoRateGivesZeroTicks)
{
    for (const TimeScalePair pair :
         {TimeScalePair{0, 1}, {1, 0}, {-1, 1}, {1, -1}, {std::numeric_limits<std::int32_t>::min(), 1}}) {
        EXPECT_EQ(TicksFromTimeScale(pair), 0) << pair.timeScale << " / " << pair.sampleSize;
    }
}

TEST(LegacySuite, PairsAreReducedAndExactWhereTheyFit)
{
    std::mt19937_64 random(2);
    for (int i = 0; i < 100'000; ++i) {
        const auto ticks = static_cast<std::int64_t>((random() & kMax64) >> (random() % 63));
        const std::int64_t divisor = std::gcd(kTicksPerSecond, ticks);
        if (ticks == 0 || kTicksPerSecond / divisor > kMax32 || ticks / divisor > kMax32) {
            continue;
        }
        const TimeScalePair pair = TimeScaleFromTicks(ticks);
        ASSERT_EQ(pair.timeScale, kTicksPerSecond / divisor) << ticks;
        ASSERT_EQ(pair.sampleSize, ticks / divisor) << ticks;
    }
}

// More than 2^31 - 1 frames a second have no pair: 254016000000 / 119 is the first that has.
constexpr std::int64_t kFewestTicks = 119;

TEST(LegacySuite, EveryFrameShorterThan2To31TicksComesBackToTheTick)
{
    std::mt19937_64 random(3);
    for (std::int64_t i = 0; i < 100'000; ++i) {
        const std::int64_t ticks =
            i < 50'000 ? kFewestTicks + i : kFewestTicks + static_cast<std::int64_t>(random() % (kMax32 - 119));
        const TimeScalePair pair = TimeScaleFromTicks(ticks);
        ASSERT_EQ(TicksFromTimeScale(pair), ticks) << pair.timeScale << " / " << pair.sampleSize;
    }
}

TEST(LegacySuite, EveryFrameShorterThanAYearIsLessThanOnePartIn2To31Off)
{
    std::mt19937_64 random(5);
    constexpr std::int64_t kYear = 31'557'600 * kTicksPerSecond;
    for (std::int64_t i = 0; i < 200'000; ++i) {
        // Fractions of 32-bit numbers are least exact for ticks near whole seconds and whole rates.
        const std::int64_t spread = static_cast<std::int64_t>(random() % 2001) - 1000;
        const std::int64_t ticks =
            i % 2 == 0
                ? kTicksPerSecond / (1 + static_cast<std::int64_t>(random() % 60)) + spread
                : kFewestTicks + static_cast<std::int64_t>((random() & kMax64) % kYear >> (random() % 50));
        const TimeScalePair pair = TimeScaleFromTicks(ticks);
        ASSERT_GT(pair.timeScale, 0) << ticks;
        // |scale × ticks - T × size| / (T × size) < 2^-31, without a division.
        const Wide given = Wide{kTicksPerSecond} * pair.sampleSize;
        const Wide difference = Wide{pair.timeScale} * ticks - given;
        ASSERT_LT((difference < 0 ? -difference : difference) * (Wide{1} << 31), given)
            << ticks << ": " << pair.timeScale << " / " << pair.sampleSize;
    }
}

TEST(LegacySuite, AnyTicksAreAnsweredWithAPairOrWithNone)
{
    std::mt19937_64 random(4);
    for (int i = 0; i < 100'000; ++i) {
        const auto ticks = static_cast<std::int64_t>(random() >> (random() % 64));
        const TimeScalePair pair = TimeScaleFromTicks(ticks);
        ASSERT_EQ(pair.timeScale > 0, pair.sampleSize > 0) << ticks;
        ASSERT_GE(pair.timeScale, 0) << ticks;
        (void)TicksFromTimeScale(pair);
    }
}

TEST(LegacySuite, TicksThatAreNoRateHaveNoPair)
{
    for (const std::int64_t ticks :
         {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min(), kMax64, std::int64_t{1},
          std::int64_t{118}}) {
        EXPECT_EQ(TimeScaleFromTicks(ticks), TimeScalePair{}) << ticks;
    }
}

TEST(LegacySuite, Version2LeavesItsOutputsAloneForWhatIsNoRate)
{
    std::int32_t scale = 77;
    std::int32_t size = 78;
    EXPECT_LT(importhost::LegacySuite2().ticksToTimeScale(0, &scale, &size), 0);
    EXPECT_EQ(scale, 77);
    EXPECT_EQ(size, 78);
    EXPECT_LT(importhost::LegacySuite2().ticksToTimeScale(8467200000, nullptr, &size), 0);
    EXPECT_EQ(importhost::LegacySuite2().ticksToTimeScale(8467200000, &scale, &size), 0);
    EXPECT_EQ(scale, 30);
    EXPECT_EQ(size, 1);
}

TEST(LegacySuite, Version1AnswersZeroForWhatIsNoRate)
{
    std::int64_t ticks = 77;
    EXPECT_EQ(importhost::LegacySuite1().timeScaleToTicks(0, 1001, &ticks), 0);
    EXPECT_EQ(ticks, 0);
    EXPECT_LT(importhost::LegacySuite1().timeScaleToTicks(30, 1, nullptr), 0);
}

} // namespace
