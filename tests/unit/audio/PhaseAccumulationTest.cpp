#include "AudioTestSupport.h"

#include <ImporterTessel/audio/PhaseAccumulation.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace {

using audiotest::Bits;
using ImporterTessel::AccumulatePhases;

/// NaNs count as equal whatever their bits.
::testing::AssertionResult IsRepeatedAddition(double phase, double step, std::size_t count)
{
    std::vector<double> sums(count, -1.0);
    const double next = AccumulatePhases(phase, step, sums);
    double expected = phase;
    const auto same = [&](double actual) {
        return Bits(actual) == Bits(expected) || (std::isnan(actual) && std::isnan(expected));
    };
    for (std::size_t k = 0; k < count; ++k) {
        if (!same(sums[k])) {
            return ::testing::AssertionFailure() << std::hexfloat << "sum " << k << " of " << phase << " + k * "
                                                 << step << " is " << sums[k] << ", not " << expected;
        }
        expected += step;
    }
    if (!same(next)) {
        return ::testing::AssertionFailure()
               << std::hexfloat << "the sum to go on with is " << next << ", not " << expected;
    }
    return ::testing::AssertionSuccess();
}

TEST(PhaseAccumulation, OfUsualTonesIsRepeatedAddition)
{
    for (const double frequency : {20.0, 80.0, 88.5, 1000.0, 2000.0, 23999.0}) {
        for (const double sampleRate : {8000.0, 44100.0, 48000.0, 192000.0}) {
            EXPECT_TRUE(IsRepeatedAddition(0.0, frequency / sampleRate * 6.2831854820251465, 300'000));
        }
    }
}

TEST(PhaseAccumulation, OfAnyNumbersIsRepeatedAddition)
{
    std::mt19937_64 random(audiotest::Seed());
    std::uniform_real_distribution<double> mantissa(1.0, 2.0);
    std::uniform_int_distribution<int> phaseExponent(-40, 24);
    std::uniform_int_distribution<int> stepExponent(-40, 8);
    std::bernoulli_distribution sign;
    for (int round = 0; round < 4000; ++round) {
        const double phase = std::ldexp(mantissa(random), phaseExponent(random)) * (sign(random) ? 1 : -1);
        const double step = std::ldexp(mantissa(random), stepExponent(random)) * (sign(random) ? 1 : -1);
        ASSERT_TRUE(IsRepeatedAddition(phase, step, 1000)) << audiotest::SeedText();
    }
}

// Exactly half a last place: rounding goes to the even neighbour, so the first sum may go another way than
// all that follow.
TEST(PhaseAccumulation, OfStepsThatEndInHalfALastPlaceIsRepeatedAddition)
{
    for (const double phase :
         {1.0, 1.0 + 0x1p-52, 1.5 + 0x1p-52, -1.0, -1.75 - 0x1p-52, 3.0, 0x1p20 - 0x1p-32}) {
        for (int bits = 1; bits < 64; ++bits) {
            int exponent = 0;
            std::frexp(phase, &exponent);
            const double halfPlace = std::ldexp(1.0, exponent - 54);
            EXPECT_TRUE(IsRepeatedAddition(phase, bits * halfPlace, 600));
            EXPECT_TRUE(IsRepeatedAddition(phase, -bits * halfPlace, 600));
            EXPECT_TRUE(IsRepeatedAddition(phase, std::ldexp(1.0, exponent - 9) + bits * halfPlace, 600));
        }
    }
}

TEST(PhaseAccumulation, TowardsAndThroughZeroIsRepeatedAddition)
{
    EXPECT_TRUE(IsRepeatedAddition(-100.0, 0.1, 3000));
    EXPECT_TRUE(IsRepeatedAddition(100.0, -0.1, 3000));
    EXPECT_TRUE(IsRepeatedAddition(-64.0, 0.125, 3000));
    EXPECT_TRUE(IsRepeatedAddition(64.0, -0x1.fffffffffffffp-4, 3000));
    EXPECT_TRUE(IsRepeatedAddition(0x1p-1070, -0x1p-1073, 100));
}

TEST(PhaseAccumulation, OfNumbersBesidePowersOfTwoIsRepeatedAddition)
{
    for (int exponent = -3; exponent < 20; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double step : {0x1p-6, 0.1, std::nextafter(0.1, 1.0), 1.0 / 3.0}) {
            for (const double phase : {std::nextafter(power, 0.0), power, std::nextafter(power, 1e9),
                                       power - 20 * step, power + 20 * step}) {
                EXPECT_TRUE(IsRepeatedAddition(phase, step, 700));
                EXPECT_TRUE(IsRepeatedAddition(phase, -step, 700));
                EXPECT_TRUE(IsRepeatedAddition(-phase, step, 700));
            }
        }
    }
}

TEST(PhaseAccumulation, OfNumbersThatAreNoPhasesIsRepeatedAddition)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    constexpr double kMax = std::numeric_limits<double>::max();
    constexpr double kTiny = std::numeric_limits<double>::denorm_min();
    for (const double phase : {0.0, -0.0, 1.0, kInfinity, -kInfinity, kNaN, kMax, -kMax, kTiny}) {
        for (const double step : {0.0, -0.0, 1.0, kInfinity, -kInfinity, kNaN, kMax, -kMax, kTiny, 0x1p970}) {
            EXPECT_TRUE(IsRepeatedAddition(phase, step, 100));
        }
    }
}

TEST(PhaseAccumulation, GoesOnWhereTheLastCallEnded)
{
    std::mt19937_64 random(audiotest::Seed());
    std::uniform_int_distribution<std::size_t> length(0, 40);
    constexpr double kStep = 0.1308997;
    double expected = 0.0;
    double phase = 0.0;
    std::array<double, 40> sums{};
    for (int round = 0; round < 2000; ++round) {
        const std::span part = std::span(sums).first(length(random));
        phase = AccumulatePhases(phase, kStep, part);
        for (const double sum : part) {
            ASSERT_EQ(Bits(sum), Bits(expected)) << audiotest::SeedText();
            expected += kStep;
        }
    }
}

} // namespace
