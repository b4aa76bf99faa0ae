#include <tessel/scopes/Meters.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace tessel::scopes {
namespace {

/// A sine of 1 kHz at 48000 samples per second: its 12th sample is its peak.
std::vector<float> Tone(double levelDb)
{
    std::vector<float> samples(1920);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<float>(std::pow(10.0, levelDb / 20) *
                                        std::sin(2 * std::numbers::pi * static_cast<double>(i) / 48.0));
    }
    return samples;
}

TEST(PeakDb, AToneOfMinus18DbfsReadsMinus18)
{
    EXPECT_NEAR(PeakDb(Tone(-18.0)), -18.0, 0.001);
    EXPECT_NEAR(PeakDb(Tone(0.0)), 0.0, 0.001);
    EXPECT_NEAR(PeakDb(Tone(6.0)), 6.0, 0.001); // floats go beyond full scale
}

TEST(PeakDb, SilenceAndNaNsAreSilence)
{
    EXPECT_EQ(PeakDb({}), kSilenceDb);
    EXPECT_EQ(PeakDb(std::vector<float>(10, 0.0F)), kSilenceDb);
    EXPECT_EQ(PeakDb(std::vector<float>(10, std::numeric_limits<float>::quiet_NaN())), kSilenceDb);
}

TEST(PeakDb, ANegativePeakCountsLikeAPositiveOne)
{
    EXPECT_NEAR(PeakDb(std::array{0.1F, -0.5F, 0.25F}), 20 * std::log10(0.5), 1e-6);
}

TEST(Meters, HoldThePeakAndLetGoOfIt)
{
    Meters meters(1);
    meters.Take(0.0, std::array{-10.0});
    meters.Take(0.04, std::array{-30.0});
    EXPECT_EQ(meters.Readings()[0].peakDb, -30.0);
    EXPECT_EQ(meters.Readings()[0].heldDb, -10.0);
    meters.Take(Meters::kHoldSeconds, std::array{-30.0});
    EXPECT_EQ(meters.Readings()[0].heldDb, -10.0);
    meters.Take(Meters::kHoldSeconds + 0.04, std::array{-30.0});
    EXPECT_EQ(meters.Readings()[0].heldDb, -30.0);
}

TEST(Meters, WindingBackStartsTheHoldAnew)
{
    Meters meters(1);
    meters.Take(5.0, std::array{-10.0});
    meters.Take(1.0, std::array{-40.0});
    EXPECT_EQ(meters.Readings()[0].heldDb, -40.0);
}

TEST(Meters, RememberThatAChannelPassedFullScale)
{
    Meters meters(2);
    meters.Take(0.0, std::array{0.5, 0.0});
    meters.Take(0.04, std::array{-20.0, -20.0});
    EXPECT_TRUE(meters.Readings()[0].hasClipped);
    EXPECT_FALSE(meters.Readings()[1].hasClipped); // full scale itself is not above it
}

} // namespace
} // namespace tessel::scopes
