#include "Signals.h"

#include <tessel/verify/judge/sound/HarmonicMeter.h>
#include <tessel/verify/judge/sound/SampleGrid.h>
#include <tessel/verify/judge/sound/Spectrum.h>
#include <tessel/verify/judge/sound/ToneBank.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

using test::kRate;

TEST(ToneBank, TellsTonesAndAConstantApartInABlockOfBrokenPeriods)
{
    constexpr std::size_t kLength = 960;
    std::vector<float> samples = test::Tone(88.5, 0.125, kLength, 0.3);
    const std::vector<float> other = test::Tone(1000, 0.02, kLength, 1.1);
    for (std::size_t n = 0; n < kLength; ++n) {
        samples[n] += other[n] + 0.01F;
    }
    const ToneBank bank({88.5 / kRate, 880 / kRate, 1000 / kRate}, kLength);
    BlockTones found;
    bank.Analyse(samples, found);
    EXPECT_NEAR(std::abs(found.tones[0]), 0.125, 1e-6);
    EXPECT_NEAR(std::abs(found.tones[1]), 0, 1e-6);
    EXPECT_NEAR(std::abs(found.tones[2]), 0.02, 1e-6);
    EXPECT_NEAR(found.constant, 0.01, 1e-6);
    EXPECT_LT(found.residual, 1e-7); // what floats leave
    // The phase of sin(wn + 1.1) as a cosine at the centre, sample 479.5.
    const double phase = 2 * std::numbers::pi * 1000 / kRate * 479.5 + 1.1 - std::numbers::pi / 2;
    EXPECT_NEAR(std::remainder(std::arg(found.tones[2]) - phase, 2 * std::numbers::pi), 0, 1e-5);
}

TEST(ToneBank, ResidualIsTheNoise)
{
    constexpr std::size_t kLength = 960;
    std::vector<float> samples = test::Tone(1000, 0.25, kLength);
    test::Noise noise;
    for (float& sample : samples) {
        sample += static_cast<float>(0.001 * noise.Next());
    }
    BlockTones found;
    ToneBank({1000 / kRate}, kLength).Analyse(samples, found);
    EXPECT_NEAR(found.residual, 0.001 / std::sqrt(3.0), 3e-5); // the RMS of uniform noise
}

TEST(Spectrum, FindsFrequenciesOfTonesThatFollowEachOther)
{
    std::vector<float> samples = test::Tone(880, 0.125, 28800);
    test::Append(samples, test::Silence(9600));
    test::Append(samples, test::Tone(88.5, 0.125, 28800));
    test::Append(samples, test::Silence(9600));
    test::Append(samples, test::Tone(2000, 0.0625, 48000));
    const auto peaks = PeaksOf({samples}, 48000, 10);
    ASSERT_EQ(peaks.size(), 3U);
    std::vector<double> found;
    for (const SpectralPeak& peak : peaks) {
        found.push_back(peak.frequency);
    }
    std::sort(found.begin(), found.end());
    EXPECT_NEAR(found[0], 88.5, 0.01);
    EXPECT_NEAR(found[1], 880, 0.002);
    EXPECT_NEAR(found[2], 2000, 0.002);
}

TEST(Spectrum, PitchIsTheRatioUnderWhichMostTonesAreInPlace)
{
    const std::vector<double> tones{88.5, 660, 880, 1000, 1320, 2000};
    const auto at = [](std::initializer_list<double> frequencies) {
        std::vector<SpectralPeak> peaks;
        for (const double frequency : frequencies) {
            peaks.push_back({frequency, 0.1});
        }
        return peaks;
    };
    EXPECT_NEAR(PitchRatio(at({660, 880, 1320}), tones), 1, 1e-9);
    EXPECT_NEAR(PitchRatio(at({686.4, 915.2, 1372.8}), tones), 1.04, 1e-9);
    EXPECT_EQ(PitchRatio(at({311, 407, 523, 701, 1711}), {1000}), 0); // none of it
    // A tone that jumps inside its window looks off by some tenths of a percent: the others tell the pitch.
    EXPECT_NEAR(PitchRatio(at({660, 880, 1003, 1320}), {660, 880, 1000, 1320}), 1, 1e-9);
}

TEST(SampleGrid, TellsTheBitsThatSamplesUse)
{
    for (const int bits : {8, 16, 20, 24}) {
        SampleGrid grid;
        std::vector<float> samples = test::Tone(997, 0.125, 48000);
        for (float& sample : samples) {
            const double steps = std::exp2(bits - 1);
            sample = static_cast<float>(std::floor(static_cast<double>(sample) * steps) / steps);
        }
        grid.Take(samples);
        EXPECT_EQ(grid.UsedBits(), bits);
    }
    SampleGrid floats;
    floats.Take(test::Tone(997, 0.125, 4800));
    EXPECT_EQ(floats.UsedBits(), 25);
    SampleGrid silent;
    silent.Take(test::Silence(100));
    EXPECT_EQ(silent.UsedBits(), 0);
}

ChannelStatistics Measured(const std::vector<float>& samples, double hertz)
{
    constexpr std::size_t kLength = 960;
    const HarmonicBank bank(hertz / kRate, kLength);
    HarmonicMeter meter;
    for (std::size_t at = 0; at + kLength <= samples.size(); at += kLength) {
        meter.TakeTone(bank, std::span(samples).subspan(at, kLength));
    }
    ChannelStatistics statistics;
    meter.FillIn(statistics, kLength);
    return statistics;
}

TEST(HarmonicMeter, FindsAThirdHarmonicUnderLouderNoise)
{
    std::vector<float> samples = test::Tone(880, 0.125, 96000);
    test::Noise noise;
    for (float& sample : samples) {
        const double x = static_cast<double>(sample) / 0.125;
        // sin(3a) = 3 sin(a) - 4 sin(a)^3, here with an amplitude of 0.1 % of the tone's.
        sample += static_cast<float>(0.125 * 0.001 * (3 * x - 4 * x * x * x) + 0.0005 * noise.Next());
    }
    const ChannelStatistics found = Measured(samples, 880);
    EXPECT_NEAR(found.harmonics, 0.001, 3 * found.harmonicsSigma + 2e-5);
    EXPECT_LT(found.harmonicsSigma, 1e-4);
    EXPECT_EQ(found.flatBlocks, 0);
}

TEST(HarmonicMeter, TopsThatAreCutAreFlat)
{
    for (const double hertz : {88.5, 880.0, 2000.0}) {
        std::vector<float> samples = test::Tone(hertz, 0.125, 48000);
        EXPECT_EQ(Measured(samples, hertz).flatBlocks, 0) << hertz;
        for (float& sample : samples) {
            sample = std::clamp(sample, -0.1F, 0.1F);
        }
        const ChannelStatistics found = Measured(samples, hertz);
        EXPECT_GT(found.flatBlocks, 40) << hertz;
        EXPECT_NEAR(found.flatLevel, 0.1, 1e-6) << hertz;
    }
}

TEST(HarmonicMeter, BentTopsAreNotFlat)
{
    std::vector<float> samples = test::Tone(1000, 0.125, 48000);
    for (float& sample : samples) {
        // 2 % of third harmonic.
        sample -= sample * sample * sample * 4 * 0.02F / (0.125F * 0.125F);
    }
    const ChannelStatistics found = Measured(samples, 1000);
    EXPECT_EQ(found.flatBlocks, 0);
    EXPECT_NEAR(found.harmonics, 0.02 / (1 - 0.06), 1e-4); // the tone itself loses three times as much
}

} // namespace
} // namespace tessel::verify::judge
