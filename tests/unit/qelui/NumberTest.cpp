#include <kestrel/qelui/controls/UI_Number.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using qelui::FormatNumber;
using qelui::ParseNumber;
using qelui::RoundToDecimals;
using qelui::UI_NumberEdit;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(FormatNumber, ShowsExactlyTheDecimals)
{
    EXPECT_EQ(FormatNumber(1920.0, 0), "1920");
    EXPECT_EQ(FormatNumber(0.5, 4), "0.5000");
    EXPECT_EQ(FormatNumber(-12.041199826559248, 1), "-12.0");
    EXPECT_EQ(FormatNumber(1e15, 0), "1000000000000000");
}

TEST(FormatNumber, NeverShowsASignedZero)
{
    EXPECT_EQ(FormatNumber(-0.0, 2), "0.00");
    EXPECT_EQ(FormatNumber(-0.004, 2), "0.00");
    EXPECT_EQ(FormatNumber(-0.006, 2), "-0.01");
}

TEST(FormatNumber, ShowsTheLargestDoubleWhole)
{
    // 2^1024 - 2^971 has 309 digits.
    EXPECT_EQ(FormatNumber(std::numeric_limits<double>::max(), 0).size(), 309U);
    EXPECT_EQ(FormatNumber(-kInfinity, 3), "-inf");
}

TEST(ParseNumber, TakesWhatAPersonTypes)
{
    EXPECT_EQ(ParseNumber("1920"), 1920.0);
    EXPECT_EQ(ParseNumber(" +0.25\t"), 0.25);
    EXPECT_EQ(ParseNumber("-1e3"), -1000.0);
    EXPECT_EQ(ParseNumber(".5"), 0.5);
}

TEST(ParseNumber, RefusesWhatIsNoFiniteNumber)
{
    for (const char* const text :
         {"", "  ", "abc", "1x", "1 2", "1,5", "+-1", "++1", "inf", "nan", "1e400", "0x10", "-"}) {
        EXPECT_FALSE(ParseNumber(text).has_value()) << '"' << text << '"';
    }
}

TEST(RoundToDecimals, RoundsHalvesAwayFromZero)
{
    EXPECT_EQ(RoundToDecimals(2.5, 0), 3.0);
    EXPECT_EQ(RoundToDecimals(-2.5, 0), -3.0);
    EXPECT_EQ(RoundToDecimals(0.125, 2), 0.13);
    EXPECT_FALSE(std::signbit(RoundToDecimals(-0.2, 0)));
}

TEST(RoundToDecimals, LeavesNumbersWithoutRoomForDecimalsAlone)
{
    EXPECT_EQ(RoundToDecimals(1e300, 15), 1e300);
    EXPECT_EQ(RoundToDecimals(kInfinity, 2), kInfinity);
}

TEST(RoundToDecimals, RoundingTwiceIsRoundingOnce)
{
    constexpr unsigned kSeed = 20261;
    std::mt19937 random(kSeed);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    for (int i = 0; i < 20000; ++i) {
        const double value = values(random);
        const int decimals = static_cast<int>(random() % 10U);
        const double once = RoundToDecimals(value, decimals);
        ASSERT_EQ(RoundToDecimals(once, decimals), once)
            << "seed " << kSeed << ", " << value << ", " << decimals;
        // Half a step, and what two roundings of a double may add.
        const double most =
            0.5 * std::pow(10.0, -decimals) + 2.0 * std::abs(value) * std::numeric_limits<double>::epsilon();
        ASSERT_LE(std::abs(once - value), most) << value << ", " << decimals;
    }
}

TEST(NumberEdit, WhatCodeSetsIsNeitherRoundedNorLimitedNorNotified)
{
    UI_NumberEdit edit("n");
    int notified = 0;
    edit.NotifyWhenChanged([&] { ++notified; });
    edit.SetLimits(16.0, 100.0);
    edit.SetValue(3.75);
    EXPECT_EQ(edit.GetValue(), 3.75);
    EXPECT_EQ(edit.ShownText(), "4");
    EXPECT_EQ(notified, 0);
}

TEST(NumberEdit, WhatAPersonEntersIsRoundedThenLimitedThenNotified)
{
    UI_NumberEdit edit("n");
    edit.SetLimits(16.0, 100.0);
    double heard = 0.0;
    edit.NotifyWhenChanged([&] { heard = edit.GetValue(); });
    edit.EnterValue(50.6);
    EXPECT_EQ(heard, 51.0);
    edit.EnterValue(15.4);
    EXPECT_EQ(heard, 16.0);
    // Rounded first: 15.6 is 16 already.
    edit.EnterValue(15.6);
    EXPECT_EQ(heard, 16.0);
    edit.EnterValue(1e300);
    EXPECT_EQ(heard, 100.0);
}

TEST(NumberEdit, EnteringTheOldNumberStillNotifies)
{
    UI_NumberEdit edit("n");
    int notified = 0;
    edit.NotifyWhenChanged([&] { ++notified; });
    edit.EnterValue(0.0);
    EXPECT_EQ(notified, 1);
}

TEST(NumberEdit, ZeroPassesWhereItIsAllowedAndNowhereElse)
{
    UI_NumberEdit edit("n");
    edit.SetLimits(0.1, std::nullopt);
    edit.SetDecimalPlaces(6);
    EXPECT_EQ(edit.Constrain(0.0), 0.1);
    edit.SetZeroAllowed(true);
    EXPECT_EQ(edit.Constrain(0.0), 0.0);
    EXPECT_EQ(edit.Constrain(-0.0000001), 0.0);
    EXPECT_FALSE(std::signbit(edit.Constrain(-0.0000001)));
    EXPECT_EQ(edit.Constrain(0.000001), 0.1);
    EXPECT_EQ(edit.Constrain(-1.0), 0.1);
}

TEST(NumberEdit, TakesNothingThatIsNoFiniteNumberAndNothingWhileDisabled)
{
    UI_NumberEdit edit("n");
    int notified = 0;
    edit.NotifyWhenChanged([&] { ++notified; });
    edit.EnterValue(std::nan(""));
    edit.EnterValue(kInfinity);
    edit.SetDisabled(true);
    edit.EnterValue(7.0);
    EXPECT_EQ(edit.GetValue(), 0.0);
    EXPECT_EQ(notified, 0);
}

} // namespace
