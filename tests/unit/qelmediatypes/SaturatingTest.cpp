#include "WideIntegers.h"

#include <kestrel/qelmediatypes/Saturating.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>

namespace {

using namespace qelmediatypes;
using test::Clamped;
using test::Wide;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(SaturatingArithmetic, EqualsExactArithmeticKeptInRange)
{
    const std::vector<std::int64_t> numbers = test::InterestingIntegers(1, 200);
    for (const std::int64_t a : numbers) {
        for (const std::int64_t b : numbers) {
            const Wide wideA = a;
            ASSERT_EQ(SaturatingAdd(a, b), Clamped<std::int64_t>(wideA + b)) << a << " + " << b;
            ASSERT_EQ(SaturatingSubtract(a, b), Clamped<std::int64_t>(wideA - b)) << a << " - " << b;
            ASSERT_EQ(SaturatingMultiply(a, b), Clamped<std::int64_t>(wideA * b)) << a << " * " << b;
        }
    }
}

TEST(SaturatingArithmetic, MultiplyAddSaturatesOnceAtTheEnd)
{
    constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(SaturatingMultiplyAdd(kHighest, 2, kLowest), kHighest - 1); // 2^64 - 2 - 2^63
    EXPECT_EQ(SaturatingMultiplyAdd(kHighest, 3, kLowest), kHighest);
    EXPECT_EQ(SaturatingMultiplyAdd(kLowest, 2, kHighest), kLowest);
    EXPECT_EQ(SaturatingMultiplyAdd(kLowest, -1, 0), kHighest);
    EXPECT_EQ(SaturatingMultiplyAdd(kLowest, -1, -1), kHighest); // 2^63 - 1
    EXPECT_EQ(SaturatingMultiplyAdd(-7, 6, 5), -37);
}

TEST(SaturatingCast, TruncatesTowardZeroInRange)
{
    EXPECT_EQ(SaturatingCast<std::int32_t>(2.99), 2);
    EXPECT_EQ(SaturatingCast<std::int32_t>(-2.99), -2);
    EXPECT_EQ(SaturatingCast<std::int64_t>(-0.5), 0);
    EXPECT_EQ(SaturatingCast<std::uint8_t>(255.9), 255);
}

TEST(SaturatingCast, StopsAtTheEndsAndMakesNaNZero)
{
    EXPECT_EQ(SaturatingCast<std::int64_t>(0x1p63), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(SaturatingCast<std::int64_t>(-0x1p63), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(SaturatingCast<std::uint64_t>(0x1p64), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(SaturatingCast<std::uint32_t>(-1.0), 0U);
    EXPECT_EQ(SaturatingCast<std::int32_t>(kInfinity), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(SaturatingCast<std::int32_t>(-kInfinity), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(SaturatingCast<std::int32_t>(kNaN), 0);
    // The largest double below 2^63 is 2^63 - 1024.
    EXPECT_EQ(SaturatingCast<std::int64_t>(std::nextafter(0x1p63, 0.0)), 9'223'372'036'854'774'784);
}

TEST(SaturatingToFloat, RoundsToNearestUpToTheLargestFloat)
{
    constexpr float kHighest = std::numeric_limits<float>::max();
    constexpr double kTie = 0x1.ffffffp+127; // half a unit above the largest float: ties go to even, upwards
    EXPECT_EQ(SaturatingToFloat(0.1), 0.1F);
    EXPECT_EQ(SaturatingToFloat(std::nextafter(kTie, 0.0)), kHighest);
    EXPECT_EQ(SaturatingToFloat(-std::nextafter(kTie, 0.0)), -kHighest);
    EXPECT_EQ(SaturatingToFloat(kTie), std::numeric_limits<float>::infinity());
    EXPECT_EQ(SaturatingToFloat(-kTie), -std::numeric_limits<float>::infinity());
    EXPECT_EQ(SaturatingToFloat(1e39), std::numeric_limits<float>::infinity());
    EXPECT_EQ(SaturatingToFloat(kInfinity), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(SaturatingToFloat(kNaN)));
    EXPECT_EQ(std::bit_cast<std::uint32_t>(SaturatingToFloat(-0.0)), 0x8000'0000U);
}

TEST(SaturatingToFloat, GivesEveryFloatBackThatPassesThroughADouble)
{
    // A step that is coprime to 2^32 visits all exponents and many mantissas.
    for (std::uint64_t step = 0; step < 100'000; ++step) {
        const auto bits = static_cast<std::uint32_t>(step * 2'654'435'761U);
        const auto value = std::bit_cast<float>(bits);
        if (!std::isnan(value)) {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(SaturatingToFloat(value)), bits) << value;
        }
    }
}

} // namespace
