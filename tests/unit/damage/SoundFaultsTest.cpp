#include <tessel/damage/sound/ChannelFaults.h>
#include <tessel/damage/sound/SoundTime.h>

#include <gtest/gtest.h>

#include <cmath>

namespace tessel::damage {
namespace {

Moment After(const ChannelFault& fault, Moment moment, std::int64_t position = 0)
{
    fault(moment, position);
    return moment;
}

TEST(SoundTime, StepsAreAppliedFromTheFileInwards)
{
    SoundTime time;
    time.Speed(2);   // the clip twice as fast ...
    time.Delay(100); // ... and that 100 samples later
    EXPECT_EQ(time.ClipPositionOf(99), std::nullopt) << "before the clip there is silence";
    EXPECT_EQ(time.ClipPositionOf(100), 0.0);
    EXPECT_EQ(time.ClipPositionOf(103), 6.0);
}

TEST(SoundTime, LostInsertedSilentAndExchangedSamplesAreWhereTheyShouldBe)
{
    SoundTime lost;
    lost.Lose(10, 5);
    EXPECT_EQ(lost.ClipPositionOf(9), 9.0);
    EXPECT_EQ(lost.ClipPositionOf(10), 15.0);
    SoundTime inserted;
    inserted.Insert(10, 5);
    EXPECT_EQ(inserted.ClipPositionOf(9), 9.0);
    EXPECT_EQ(inserted.ClipPositionOf(10), 5.0);
    EXPECT_EQ(inserted.ClipPositionOf(15), 10.0);
    SoundTime silent;
    silent.Silence(10, 5);
    EXPECT_EQ(silent.ClipPositionOf(10), std::nullopt);
    EXPECT_EQ(silent.ClipPositionOf(15), 15.0);
    SoundTime exchanged;
    exchanged.Exchange(10, 20, 5);
    EXPECT_EQ(exchanged.ClipPositionOf(12), 22.0);
    EXPECT_EQ(exchanged.ClipPositionOf(24), 14.0);
    EXPECT_EQ(exchanged.ClipPositionOf(16), 16.0);
}

TEST(ChannelFaults, ChangeOnlyTheChannelsThatTheyName)
{
    EXPECT_EQ(After(SwapChannels(0, 2), {1, 2, 3}), (Moment{3, 2, 1}));
    EXPECT_EQ(After(SwapChannels(0, 3), {1, 2, 3}), (Moment{1, 2, 3}));
    EXPECT_EQ(After(InvertChannel(1), {1, 2, 3}), (Moment{1, -2, 3}));
    EXPECT_EQ(After(SilenceChannel(1), {1, 2, 3}), (Moment{1, 0, 3}));
    EXPECT_EQ(After(KeepChannels(2), {1, 2, 3}), (Moment{1, 2}));
    EXPECT_EQ(After(KeepChannels(4), {1, 2, 3}), (Moment{1, 2, 3, 0}));
}

TEST(ChannelFaults, LevelsAreInDecibels)
{
    EXPECT_NEAR(After(MultiplyByDecibels(-6.0206), {0.5F})[0], 0.25F, 1e-6F);
    EXPECT_NEAR(After(ClipAt(-20), {0.5F, -0.5F, 0.05F})[0], 0.1F, 1e-6F);
    EXPECT_NEAR(After(ClipAt(-20), {0.5F, -0.5F, 0.05F})[1], -0.1F, 1e-6F);
    EXPECT_EQ(After(ClipAt(-20), {0.5F, -0.5F, 0.05F})[2], 0.05F);
}

TEST(ChannelFaults, NoiseHasItsLevelAndDiffersBetweenChannels)
{
    const ChannelFault noise = AddNoise(-40);
    double power = 0;
    double product = 0;
    constexpr int kCount = 100'000;
    for (int i = 0; i < kCount; ++i) {
        const Moment moment = After(noise, {0, 0}, i);
        power += static_cast<double>(moment[0]) * static_cast<double>(moment[0]);
        product += static_cast<double>(moment[0]) * static_cast<double>(moment[1]);
    }
    EXPECT_NEAR(10 * std::log10(power / kCount), -40, 0.1);
    // Independent channels: the correlation of n samples stays within some 1 / sqrt(n).
    EXPECT_LT(std::abs(product / power), 0.02);
    EXPECT_EQ(After(noise, {0, 0}, 77), After(noise, {0, 0}, 77));
}

TEST(ChannelFaults, TheThirdHarmonicOfAToneHasItsLevel)
{
    const ChannelFault bend = BendThirdHarmonic(1);
    double third = 0;
    constexpr int kCount = 4800;
    for (int i = 0; i < kCount; ++i) {
        const double phase = 2 * 3.14159265358979 * 10 * i / kCount;
        const Moment moment = After(bend, {static_cast<float>(0.125 * std::sin(phase))});
        third += static_cast<double>(moment[0]) * std::sin(3 * phase) * 2 / kCount;
    }
    EXPECT_NEAR(third, 0.01 * 0.125, 1e-6);
}

TEST(ChannelFaults, MixesFollowBS775)
{
    const Moment stereo = After(DownMix(), {1, 2, 4, 8, 16, 32}); // L R Ls Rs C LFE
    ASSERT_EQ(stereo.size(), 2U);
    EXPECT_FLOAT_EQ(stereo[0], 1.0F + 0.70710678F * (16 + 4));
    EXPECT_FLOAT_EQ(stereo[1], 2.0F + 0.70710678F * (16 + 8));
    EXPECT_EQ(After(DownMix(), {1, 3}), (Moment{2}));
    EXPECT_EQ(After(UpMix(), {1, 3}).size(), 6U);
}

TEST(ChannelFaults, TruncationGoesDownToTheNextStep)
{
    EXPECT_EQ(After(TruncateTo(8), {0.01F, -0.01F}), (Moment{1.0F / 128, -2.0F / 128}));
}

} // namespace
} // namespace tessel::damage
