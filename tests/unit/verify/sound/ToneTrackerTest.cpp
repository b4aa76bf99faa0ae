#include "Signals.h"

#include <tessel/verify/judge/sound/ToneTracker.h>

#include <gtest/gtest.h>

namespace tessel::verify::judge {
namespace {

using test::kRate;

const std::vector<double> kTrackedTones{660, 880, 1000};

ChannelTrack Tracked(const std::vector<float>& samples, std::size_t portion = 1234)
{
    std::vector<double> cycles;
    for (const double tone : kTrackedTones) {
        cycles.push_back(tone / kRate);
    }
    const TrackerSetup setup(cycles, 0.00125);
    ToneTracker tracker(setup);
    for (std::size_t at = 0; at < samples.size(); at += portion) {
        tracker.Take(std::span(samples).subspan(at, std::min(portion, samples.size() - at)));
    }
    return tracker.Finish();
}

TEST(ToneTracker, FindsBeginningsAndEndsToTheSample)
{
    std::vector<float> samples = test::Silence(10007);
    test::Append(samples, test::Tone(880, 0.125, 20011, 1.0));
    test::Append(samples, test::Silence(9001));
    test::Append(samples, test::Tone(660, 0.125, 30000, 1.0));
    const ChannelTrack track = Tracked(samples);
    ASSERT_EQ(track.runs.size(), 4U);
    EXPECT_TRUE(track.runs[0].IsSilent());
    EXPECT_NEAR(track.runs[1].begin, 10007, 1);
    EXPECT_EQ(track.runs[1].tones.front().index, 1U);
    EXPECT_NEAR(track.runs[1].tones.front().amplitude, 0.125, 1e-6);
    EXPECT_NEAR(track.runs[2].begin, 10007 + 20011, 1);
    EXPECT_NEAR(track.runs[3].begin, 10007 + 20011 + 9001, 1);
    EXPECT_EQ(track.runs[3].tones.front().index, 0U);
    EXPECT_TRUE(track.runs[3].isLast);
    EXPECT_TRUE(track.gaps.empty());
}

TEST(ToneTracker, DoesNotDependOnHowSamplesAreCut)
{
    std::vector<float> samples = test::Silence(5000);
    test::Append(samples, test::Tone(1000, 0.125, 50000, 0.7));
    const ChannelTrack whole = Tracked(samples, samples.size());
    for (const std::size_t portion : {std::size_t{1}, std::size_t{960}, std::size_t{1001}}) {
        const ChannelTrack cut = Tracked(samples, portion);
        ASSERT_EQ(cut.runs.size(), whole.runs.size());
        EXPECT_EQ(cut.runs[1].begin, whole.runs[1].begin);
        EXPECT_EQ(cut.runs[1].tones.front().phase, whole.runs[1].tones.front().phase);
    }
}

TEST(ToneTracker, ALossInsideAToneIsAJumpOfItsPhaseAtThatSample)
{
    const std::vector<float> tone = test::Tone(1000, 0.125, 96000, 0.2);
    std::vector<float> samples(tone.begin(), tone.begin() + 40000);
    samples.insert(samples.end(), tone.begin() + 40013, tone.end()); // 13 samples of 48 a period
    const ChannelTrack track = Tracked(samples);
    ASSERT_EQ(track.runs.size(), 2U);
    EXPECT_NEAR(track.runs[1].begin, 40000, 1);
    EXPECT_TRUE(track.gaps.empty());
    // Both phases, carried to one sample, differ by 13 / 48 of a turn.
    const double cycles = 1000 / kRate;
    const double turns = track.runs[1].tones[0].phase / (2 * std::numbers::pi) -
                         track.runs[0].tones[0].phase / (2 * std::numbers::pi) -
                         cycles * (track.runs[1].middle - track.runs[0].middle);
    EXPECT_NEAR(std::remainder(turns - 13.0 / 48, 1.0), 0, 1e-5);
}

TEST(ToneTracker, SilentSamplesInsideAToneAreAGapAndLoudOnesAClick)
{
    std::vector<float> gap = test::Tone(880, 0.125, 96000, 0.2);
    std::fill(gap.begin() + 30000, gap.begin() + 30300, 0.0F);
    ChannelTrack track = Tracked(gap);
    ASSERT_EQ(track.gaps.size(), 1U);
    EXPECT_TRUE(track.gaps[0].isSilent);
    EXPECT_NEAR(track.gaps[0].first, 30000, 3); // a sine near its zero is no different from silence
    EXPECT_NEAR(track.gaps[0].last, 30299, 3);
    EXPECT_EQ(track.runs.size(), 1U);

    std::vector<float> click = test::Tone(880, 0.125, 96000, 0.2);
    click[50001] += 0.3F;
    track = Tracked(click);
    ASSERT_EQ(track.gaps.size(), 1U);
    EXPECT_FALSE(track.gaps[0].isSilent);
    EXPECT_EQ(track.gaps[0].first, 50001);
    EXPECT_EQ(track.gaps[0].last, 50001);
}

TEST(ToneTracker, TheSlopeOfThePhaseIsTheDriftOfTheClock)
{
    // 50 ppm fast.
    const ChannelTrack track = Tracked(test::Tone(1000 * 1.00005, 0.125, 480000));
    ASSERT_EQ(track.runs.size(), 1U);
    const double ppm = track.runs[0].tones[0].slope / (2 * std::numbers::pi * 1000 / kRate) * 1e6;
    EXPECT_NEAR(ppm, 50, 0.01);
}

TEST(ToneTracker, LevelsBesideTonesAreMeasured)
{
    std::vector<float> samples = test::Tone(1000, 0.125, 96000);
    test::Noise noise;
    for (float& sample : samples) {
        sample += static_cast<float>(0.003 + 0.001 * noise.Next());
    }
    const ChannelTrack track = Tracked(samples);
    EXPECT_NEAR(track.statistics.constant, 0.003, 3 * track.statistics.constantSigma + 1e-6);
    EXPECT_NEAR(track.statistics.noise, 0.001 / std::sqrt(3.0), 1e-5);
}

TEST(ToneTracker, ChangesInsideBlocksAreNoNoise)
{
    for (std::size_t place = 0; place < 960; place += 53) {
        // Silence, 0.2 s of tone, the same again from 1000 samples before, silence.
        std::vector<float> samples = test::Silence(4800 + place);
        const std::vector<float> tone = test::Tone(1000, 0.125, 60000);
        samples.insert(samples.end(), tone.begin(), tone.begin() + 9600);
        samples.insert(samples.end(), tone.begin() + 8600, tone.end());
        test::Append(samples, test::Silence(9600));
        const ChannelTrack track = Tracked(samples);
        EXPECT_LT(track.statistics.noise, 1e-6) << place;
        EXPECT_LT(track.statistics.harmonics, 1e-6) << place;
        EXPECT_EQ(track.runs.size(), 4U) << place;
    }
}

TEST(ToneTracker, WhatIsNeitherSilenceNorKnownTonesIsSomethingElse)
{
    std::vector<float> samples(96000);
    test::Noise noise;
    for (float& sample : samples) {
        sample = static_cast<float>(0.3 * noise.Next());
    }
    const ChannelTrack track = Tracked(samples);
    double other = 0;
    for (const ToneRun& run : track.runs) {
        other += run.isOther || run.IsSilent() ? run.end - run.begin : 0;
    }
    EXPECT_GT(other, 90000);
}

} // namespace
} // namespace tessel::verify::judge
