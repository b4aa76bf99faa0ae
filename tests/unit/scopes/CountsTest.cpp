#include <tessel/scopes/Counts.h>

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace tessel::scopes {
namespace {

TEST(Steps, PutEveryValueSomewhere)
{
    const Steps steps(-0.1F, 1.1F, 120); // 0.01 a step
    EXPECT_EQ(steps.Of(0.005F), 10);
    EXPECT_EQ(steps.Of(0.995F), 109);
    EXPECT_EQ(steps.Of(-7.0F), 0);
    EXPECT_EQ(steps.Of(7.0F), 119);
    EXPECT_EQ(steps.Of(std::numeric_limits<float>::infinity()), 119);
    EXPECT_EQ(steps.Of(std::numeric_limits<float>::quiet_NaN()), 0);
}

Plane Ramp(int width, int height)
{
    Plane plane;
    plane.Resize(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            plane.Row(y)[x] = static_cast<float>(x) / static_cast<float>(width);
        }
    }
    return plane;
}

TEST(Waveform, ARampIsARisingLineAndNoSampleIsLost)
{
    CountGrid grid(10, 120);
    AddWaveform(Ramp(100, 7), grid);
    std::uint64_t sum = 0;
    for (int column = 0; column < 10; ++column) {
        for (int row = 0; row < 120; ++row) {
            sum += grid.At(column, row);
            // Ten columns of the ramp in each column of the grid: levels column/10 to column/10 + 0.09.
            const bool isOnLine = row >= 9 + 10 * column && row <= 20 + 10 * column;
            EXPECT_TRUE(isOnLine || grid.At(column, row) == 0) << column << ' ' << row;
        }
    }
    EXPECT_EQ(sum, 700U);
}

TEST(Waveform, ARowCountsAsOftenAsItsWeightSays)
{
    CountGrid grid(1, 120);
    AddWaveform(Ramp(1, 4), grid, std::vector<std::uint32_t>{3, 0, 2});
    // Level 0 is where two steps meet; the fourth row has no weight.
    EXPECT_EQ(grid.At(0, 9) + grid.At(0, 10), 5U);
}

TEST(Histogram, CountsEachSampleOnce)
{
    CountGrid waveform(7, 120);
    AddWaveform(Ramp(100, 3), waveform);
    std::vector<std::uint32_t> bins(60);
    AddUp(waveform, bins);
    EXPECT_EQ(std::accumulate(bins.begin(), bins.end(), 0U), 300U);
    EXPECT_EQ(bins[2], 0U); // below black
    EXPECT_EQ(bins[57], 0U);
    EXPECT_NEAR(bins[30], 6, 3); // 0.02 of the levels of 300 samples
}

TEST(Vectors, NoChromaIsTheMiddleAndRedIsUp)
{
    Signal signal;
    signal.cb.Resize(2, 1);
    signal.cr.Resize(2, 1);
    signal.cb.samples = {0.0F, -0.1146F};
    signal.cr.samples = {0.0F, 0.5F}; // red at 100 % in BT.709
    CountGrid grid(121, 121);
    AddVectors(signal, grid);
    EXPECT_EQ(grid.At(60, 60), 1U);
    // (0.5 + 0.6) / 1.2 × 121 = 110.9 and (-0.1146 + 0.6) / 1.2 × 121 = 48.9
    EXPECT_EQ(grid.At(48, 110), 1U);
    EXPECT_EQ(grid.At(60, 110) + grid.At(48, 60), 0U);
}

} // namespace
} // namespace tessel::scopes
