#include "Signals.h"

#include <tessel/verify/judge/sound/MixFit.h>
#include <tessel/verify/judge/sound/TimeMap.h>
#include <tessel/verify/judge/sound/ToneTracker.h>

#include <gtest/gtest.h>

namespace tessel::verify::judge {
namespace {

using test::kRate;

const std::vector<double> kTones{660, 880, 1000, 1320};
using Channels = std::vector<std::vector<float>>;

SoundTrack Tracked(const Channels& channels)
{
    std::vector<double> cycles;
    for (const double tone : kTones) {
        cycles.push_back(tone / kRate);
    }
    const TrackerSetup setup(cycles, 0.00125);
    SoundTrack track;
    track.rate = kRate;
    track.frequencies = kTones;
    for (const std::vector<float>& samples : channels) {
        ToneTracker tracker(setup);
        tracker.Take(samples);
        track.channels.push_back(tracker.Finish());
    }
    return track;
}

/// Two channels that take turns: 880 Hz on the first, 1320 Hz on the second, 660 Hz on the first, 1000 Hz on
/// both, 0.6 s each with 0.2 s of silence, every tone with its phase counted from sample 0.
Channels Identification()
{
    Channels channels{test::Silence(160000), test::Silence(160000)};
    const auto put = [&](std::size_t channel, double hertz, std::size_t first) {
        const std::vector<float> tone = test::Tone(hertz, 0.125, first + 28800);
        std::copy(tone.begin() + static_cast<std::ptrdiff_t>(first), tone.end(),
                  channels[channel].begin() + static_cast<std::ptrdiff_t>(first));
    };
    put(0, 880, 0);
    put(1, 1320, 38400);
    put(0, 660, 76800);
    put(0, 1000, 115200);
    put(1, 1000, 115200);
    return channels;
}

TimeMap Mapped(const Channels& movie)
{
    return MapTime(Tracked(Identification()), Tracked(movie), 1, 0.5 / kRate);
}

TEST(TimeMap, WhatComesBackUnchangedIsInItsPlace)
{
    const TimeMap map = Mapped(Identification());
    EXPECT_NEAR(map.pitch, 1, 1e-8);
    ASSERT_EQ(map.pieces.size(), 1U);
    EXPECT_NEAR(map.pieces[0].shift, 0, 1e-8);
    EXPECT_TRUE(map.steps.empty());
    EXPECT_TRUE(map.strays.empty());
}

TEST(TimeMap, ALateSoundIsShiftedAndNothingElse)
{
    for (const std::size_t late : {std::size_t{7}, std::size_t{100}, std::size_t{1920}, std::size_t{50000}}) {
        Channels movie = Identification();
        for (std::vector<float>& channel : movie) {
            channel.insert(channel.begin(), late, 0.0F);
            channel.resize(160000);
        }
        const TimeMap map = Mapped(movie);
        ASSERT_EQ(map.pieces.size(), 1U) << late;
        EXPECT_NEAR(-map.pieces[0].shift * kRate, static_cast<double>(late), 3 * map.sigma * kRate + 0.01)
            << late;
        EXPECT_TRUE(map.steps.empty()) << late;
    }
}

TEST(TimeMap, LostSamplesAreCountedWhereTheyAreLost)
{
    for (const std::ptrdiff_t count : {13, 480, 5000}) {
        Channels movie = Identification();
        for (std::vector<float>& channel : movie) {
            channel.erase(channel.begin() + 90000, channel.begin() + 90000 + count); // inside 660 Hz
        }
        const TimeMap map = Mapped(movie);
        ASSERT_EQ(map.steps.size(), 1U) << count;
        EXPECT_NEAR(map.steps[0].skipped * kRate, static_cast<double>(count), 0.5) << count;
        EXPECT_NEAR(map.steps[0].first * kRate, 90000, 2) << count;
        EXPECT_NEAR(map.steps[0].last * kRate, 90000, 2) << count;
    }
}

TEST(TimeMap, LossInSilenceIsToldBetweenTheTonesAroundIt)
{
    Channels movie = Identification();
    for (std::vector<float>& channel : movie) {
        channel.erase(channel.begin() + 108000, channel.begin() + 108700);
    }
    const TimeMap map = Mapped(movie);
    ASSERT_EQ(map.steps.size(), 1U);
    EXPECT_NEAR(map.steps[0].skipped * kRate, 700, 0.5);
    EXPECT_LE(map.steps[0].first * kRate, 108000);
    EXPECT_GE(map.steps[0].last * kRate, 108000);
}

TEST(TimeMap, AddedSamplesAreNegativeSteps)
{
    Channels movie = Identification();
    for (std::vector<float>& channel : movie) {
        const std::vector<float> again(channel.begin() + 89000, channel.begin() + 90000);
        channel.insert(channel.begin() + 90000, again.begin(), again.end());
    }
    const TimeMap map = Mapped(movie);
    ASSERT_EQ(map.steps.size(), 1U);
    EXPECT_NEAR(map.steps[0].skipped * kRate, -1000, 0.5);
}

TEST(TimeMap, AStepInTheMiddleIsNoOtherSpeed)
{
    // 40 samples are less than edges may be off; a line through all edges has a slope of some 3e-4.
    for (const std::ptrdiff_t count : {40, 100, 150}) {
        Channels movie = Identification();
        for (std::vector<float>& channel : movie) {
            channel.erase(channel.begin() + 90000, channel.begin() + 90000 + count); // inside 660 Hz
        }
        const TimeMap map = Mapped(movie);
        EXPECT_FALSE(map.IsStretched()) << count;
        ASSERT_EQ(map.steps.size(), 1U) << count;
        EXPECT_NEAR(map.steps[0].skipped * kRate, static_cast<double>(count), 0.5) << count;
    }
}

TEST(TimeMap, AStepBetweenTwoPausesOfOneToneIsNoOtherSpeed)
{
    // Four edges, of which the step parts two from two.
    Channels clip{test::Tone(1000, 0.125, 300000), test::Tone(1000, 0.125, 300000)};
    for (const std::ptrdiff_t pause : {132000, 276000}) {
        std::fill_n(clip[0].begin() + pause, 12000, 0.0F);
    }
    Channels movie = clip;
    for (std::vector<float>& channel : movie) {
        channel.erase(channel.begin() + 201600, channel.begin() + 201700);
    }
    const TimeMap map = MapTime(Tracked(clip), Tracked(movie), 1, 0.5 / kRate);
    EXPECT_FALSE(map.IsStretched());
    ASSERT_EQ(map.steps.size(), 1U);
    EXPECT_NEAR(map.steps[0].skipped * kRate, 100, 0.5);
    EXPECT_NEAR(map.steps[0].first * kRate, 201600, 2);
    EXPECT_NEAR(map.ClipSeconds(1), 1, 1e-6);
}

TEST(TimeMap, SilenceThatFillsACodecsLastFrameIsNoEdge)
{
    // A tone that has been mixed down keeps sounding in the pauses, so nothing else could tell where it is.
    Channels clip{test::Tone(1000, 0.125, 300000)};
    for (const std::ptrdiff_t pause : {132000, 276000}) {
        std::fill_n(clip[0].begin() + pause, 12000, 0.0F);
    }
    Channels movie{test::Tone(1000, 0.125, 300000)};
    test::Append(movie[0], test::Silence(700));
    const TimeMap map = MapTime(Tracked(clip), Tracked(movie), 1, 0.5 / kRate);
    EXPECT_FALSE(map.hasEdges);
    EXPECT_NEAR(map.pieces[0].shift, 0, 1e-6);
}

TEST(TimeMap, SoundStretchedWithItsPitchKeptHasASpeedOfItsOwn)
{
    // Every tone lasts 2 % longer and goes on with the phase that it began with.
    const auto longer = [](std::size_t sample) { return sample + sample / 50; };
    Channels movie{test::Silence(longer(160000)), test::Silence(longer(160000))};
    const auto put = [&](std::size_t channel, double hertz, std::size_t first) {
        const std::vector<float> tone = test::Tone(hertz, 0.125, longer(first + 28800) - longer(first));
        std::copy(tone.begin(), tone.end(),
                  movie[channel].begin() + static_cast<std::ptrdiff_t>(longer(first)));
    };
    put(0, 880, 0);
    put(1, 1320, 38400);
    put(0, 660, 76800);
    put(0, 1000, 115200);
    put(1, 1000, 115200);
    const SoundTrack clip = Tracked(Identification());
    const SoundTrack track = Tracked(movie);
    const TimeMap map = MapTime(clip, track, 1, 0.5 / kRate);
    EXPECT_TRUE(map.IsStretched());
    EXPECT_NEAR(map.tempo, 1 / 1.02, 3 * map.tempoSigma);
    EXPECT_TRUE(map.steps.empty());
    // Phases run apart, and still each channel is its own.
    const MixFit fit = FitMix(clip, track, map);
    EXPECT_EQ(fit.rows[0].source, 0);
    EXPECT_EQ(fit.rows[1].source, 1);
    EXPECT_NEAR(fit.rows[0].gain, 1, 1e-3);
    EXPECT_NEAR(fit.rows[1].gain, 1, 1e-3);
}

TEST(TimeMap, AStepBeforeMostOfTheSoundIsOneStep)
{
    // Most edges lie behind the step and tell the first shift, with which those before it do not agree.
    Channels clip = Identification();
    for (std::vector<float>& channel : clip) {
        const std::vector<float> cycle = channel;
        test::Append(channel, cycle);
        test::Append(channel, cycle);
    }
    Channels movie = clip;
    for (std::vector<float>& channel : movie) {
        const std::vector<float> again(channel.begin() + 169000, channel.begin() + 170000); // inside 880 Hz
        channel.insert(channel.begin() + 170000, again.begin(), again.end());
    }
    const TimeMap map = MapTime(Tracked(clip), Tracked(movie), 1, 0.5 / kRate);
    ASSERT_EQ(map.steps.size(), 1U);
    EXPECT_NEAR(map.steps[0].skipped * kRate, -1000, 0.5);
    EXPECT_NEAR(map.ClipSeconds(0.1), 0.1, 1e-6);
}

TEST(TimeMap, AStepOfWholePeriodsIsCountedByTheToneThatItBreaks)
{
    // 480 samples are 10 periods of 1000 Hz and 6.6 of 660 Hz; the first beginning or end of a tone comes
    // later.
    Channels clip{test::Tone(660, 0.125, 200000), test::Tone(1000, 0.125, 200000)};
    for (const std::ptrdiff_t pause : {80000, 120000, 170000}) {
        std::fill_n(clip[1].begin() + pause, 12000, 0.0F);
    }
    Channels movie = clip;
    for (std::vector<float>& channel : movie) {
        const std::vector<float> again(channel.begin() + 47520, channel.begin() + 48000);
        channel.insert(channel.begin() + 48000, again.begin(), again.end());
    }
    const TimeMap map = MapTime(Tracked(clip), Tracked(movie), 1, 0.5 / kRate);
    ASSERT_EQ(map.steps.size(), 1U);
    EXPECT_NEAR(map.steps[0].skipped * kRate, -480, 0.5);
    EXPECT_NEAR(map.steps[0].first * kRate, 48000, 2);
    EXPECT_EQ(map.signs, (std::vector<int>{1, 1}));
}

TEST(TimeMap, APauseInAnotherPlaceIsStray)
{
    Channels clip{test::Tone(1000, 0.125, 300000), test::Tone(1000, 0.125, 300000)};
    Channels movie = clip;
    for (const std::ptrdiff_t pause : {132000, 276000}) {
        std::fill_n(clip[0].begin() + pause, 12000, 0.0F);
        std::fill_n(movie[0].begin() + (pause == 132000 ? 103200 : pause), 12000, 0.0F);
    }
    for (Channels* channels : {&clip, &movie}) {
        (*channels)[1] = (*channels)[0]; // edges are those of a sound, not of a channel
    }
    const TimeMap map = MapTime(Tracked(clip), Tracked(movie), 1, 0.5 / kRate);
    EXPECT_TRUE(map.steps.empty());
    ASSERT_EQ(map.strays.size(), 1U);
    EXPECT_TRUE(map.strays[0].isPause);
    EXPECT_NEAR(map.strays[0].begin * kRate, 103200, 2);
    EXPECT_NEAR(map.strays[0].clipBegin * kRate, 132000, 2);
}

TEST(TimeMap, TonesThatChangePlacesAreStray)
{
    Channels movie = Identification();
    for (std::vector<float>& channel : movie) {
        std::swap_ranges(channel.begin() + 38400, channel.begin() + 67200, channel.begin() + 76800);
    }
    const TimeMap map = Mapped(movie);
    EXPECT_TRUE(map.steps.empty());
    ASSERT_EQ(map.strays.size(), 2U);
    EXPECT_NEAR(map.strays[0].begin * kRate, 38400, 2);
    EXPECT_NEAR(map.strays[0].clipBegin * kRate, 76800, 2);
}

TEST(MixFit, SwappedAndInvertedChannelsAreNamed)
{
    const SoundTrack clip = Tracked(Identification());
    Channels channels = Identification();
    std::swap(channels[0], channels[1]);
    for (float& sample : channels[1]) {
        sample *= -0.5F;
    }
    const SoundTrack movie = Tracked(channels);
    const MixFit fit = FitMix(clip, movie, MapTime(clip, movie, 1, 0.5 / kRate));
    EXPECT_EQ(fit.isIdentified, (std::vector<bool>{true, true}));
    EXPECT_EQ(fit.rows[0].source, 1);
    EXPECT_NEAR(fit.rows[0].gain, 1, 1e-5);
    EXPECT_EQ(fit.rows[1].source, 0);
    EXPECT_NEAR(fit.rows[1].gain, -0.5, 1e-5);
    EXPECT_LT(fit.rows[1].alone, 1e-8);
}

TEST(MixFit, ASumIsTheKnownSumAndItsGain)
{
    const SoundTrack clip = Tracked(Identification());
    Channels channels = Identification();
    for (std::size_t n = 0; n < channels[0].size(); ++n) {
        channels[0][n] = 0.5F * (channels[0][n] + channels[1][n]);
    }
    channels.resize(1);
    const SoundTrack movie = Tracked(channels);
    const MixFit fit = FitMix(clip, movie, MapTime(clip, movie, 1, 0.5 / kRate));
    const MixMatch match = NearestMix(fit, 2);
    EXPECT_EQ(match.name, "the sum of left and right");
    EXPECT_NEAR(match.gain, 0.5, 1e-5);
    EXPECT_LT(match.residual, 1e-3);
    EXPECT_EQ(match.runnerUp, "the difference of left and right");
}

TEST(MixFit, AToneOnAllChannelsTellsNoOrder)
{
    const Channels same{test::Tone(1000, 0.25, 96000), test::Tone(1000, 0.25, 96000)};
    const SoundTrack track = Tracked(same);
    const MixFit fit = FitMix(track, track, MapTime(track, track, 1, 0.5 / kRate));
    EXPECT_EQ(fit.isIdentified, (std::vector<bool>{false, false}));
    EXPECT_EQ(fit.rows[1].source, 1);
}

} // namespace
} // namespace tessel::verify::judge
