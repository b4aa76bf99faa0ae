#include <tessel/verify/judge/color/detail/CodeDepth.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace tessel::verify::judge {
namespace {

/// A ramp over all codes of `bits` bits, each four times, through `change`.
template <class Change>
CodeCounts Ramp(int bits, const Change& change)
{
    CodeCounts counts(bits);
    for (std::uint32_t code = 0; code < (1U << static_cast<unsigned>(bits)); ++code) {
        for (int i = 0; i < 4; ++i) {
            counts.Take(code, change(code), i > 0);
        }
    }
    return counts;
}

TEST(CodeDepth, CodesThatAreAllThereHaveAllTheirBits)
{
    const CodeCounts counts = Ramp(10, [](std::uint32_t code) { return code; });
    EXPECT_EQ(counts.ExpectedBits(), 10);
    EXPECT_EQ(counts.FoundBits(), 10);
    EXPECT_EQ(counts.FoundCodes(), 1024);
    EXPECT_FALSE(counts.IsDithered());
}

TEST(CodeDepth, ZeroedLowBitsAreCounted)
{
    for (const unsigned lost : {1U, 2U, 4U}) {
        const CodeCounts counts = Ramp(10, [=](std::uint32_t code) { return code >> lost << lost; });
        EXPECT_EQ(counts.FoundBits(), 10 - static_cast<int>(lost));
        EXPECT_EQ(counts.FoundCodes(), 1 << (10 - static_cast<int>(lost)));
        EXPECT_EQ(counts.ShareExplainedBy(10 - static_cast<int>(lost)), 1.0);
    }
}

TEST(CodeDepth, RepeatedBitsAreCountedToo)
{
    // RGB565's green in 8 bits: abcdef becomes abcdefab, which is level × 255 / 63 rounded, e.g. 33 -> 134.
    const CodeCounts counts = Ramp(8, [](std::uint32_t code) {
        const std::uint32_t level = code >> 2U;
        return level << 2U | level >> 4U;
    });
    EXPECT_EQ(counts.FoundBits(), 6);
    EXPECT_EQ(counts.FoundCodes(), 64);
}

TEST(CodeDepth, EightBitsShiftedIntoTenAreExpectedOfAnEightBitClip)
{
    CodeCounts counts(10);
    for (std::uint32_t code = 16; code < 236; ++code) {
        counts.Take(code * 4, code * 4, false);
    }
    EXPECT_EQ(counts.ExpectedBits(), 8);
    EXPECT_EQ(counts.FoundBits(), 8);
}

TEST(CodeDepth, DitherIsSeenInRunsOfOneCode)
{
    std::uint32_t turn = 0;
    const CodeCounts counts =
        Ramp(10, [&](std::uint32_t code) { return std::min(1020U, (code + (turn++ % 4)) >> 2U << 2U); });
    EXPECT_TRUE(counts.IsDithered());
    EXPECT_EQ(counts.FoundBits(), 8);
}

TEST(CodeDepth, OtherCodesThanTheClipsKeepTheirBits)
{
    // A gain of 0.9 leaves out codes, but not in steps.
    const CodeCounts counts =
        Ramp(8, [](std::uint32_t code) { return static_cast<std::uint32_t>(code * 0.9 + 0.5); });
    EXPECT_EQ(counts.FoundBits(), 8);
}

std::vector<StairPoint> NoisyMeans(unsigned lost, double gain, double offset, double noise)
{
    std::mt19937 random(7);
    std::normal_distribution<double> error(0, noise);
    std::vector<StairPoint> points;
    for (std::uint32_t code = 16; code < 236; ++code) {
        const std::uint32_t kept = code >> lost << lost;
        points.push_back({static_cast<double>(code), kept * gain + offset + error(random)});
    }
    return points;
}

TEST(CodeDepth, StairsAreFoundInNoisyMeansBesideGainAndOffset)
{
    const auto fit = FitStairs(NoisyMeans(2, 0.95, 3, 0.5), 2);
    ASSERT_TRUE(fit);
    EXPECT_NEAR(fit->share, 1, fit->uncertainty);
    EXPECT_LT(fit->uncertainty, 0.5);
}

TEST(CodeDepth, NoStairsAreFoundWhereThereAreNone)
{
    for (const int lost : {2, 3, 4}) {
        const auto fit = FitStairs(NoisyMeans(0, 1.05, -2, 0.5), lost);
        ASSERT_TRUE(fit);
        EXPECT_LT(fit->share + fit->uncertainty, 0.5) << lost;
    }
}

TEST(CodeDepth, ThreeColoursTellNothingOfStairs)
{
    // A codec's small errors on three flat colours: a gain, an offset and a staircase fit them exactly.
    std::vector<StairPoint> points;
    for (int i = 0; i < 100; ++i) {
        points.insert(points.end(), {{41, 40.2}, {130, 130.4}, {219, 216.9}});
    }
    EXPECT_FALSE(FitStairs(points, 2));
}

TEST(CodeDepth, FlatColoursTellNothingOfStairs)
{
    EXPECT_FALSE(FitStairs(std::vector<StairPoint>(100, {128, 127}), 2));
}

} // namespace
} // namespace tessel::verify::judge
