#include "RandomTesselInfo.h"

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/brindle/ColorSpaces.h>

#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <utility>

using ImporterTessel::FloatColor;
using ImporterTessel::TesselInfo;

namespace {

constexpr int kRounds = 200;

} // namespace

TEST(TesselInfo, DefaultsAreSixtySecondsOfGradientsWithAStereoTone)
{
    const TesselInfo info;
    EXPECT_EQ(info.mVersion, 1);
    // 'a' 'r' 'g' 'b' from the highest byte, so that memory holds b g r a.
    EXPECT_EQ(info.mPixelFormat, 0x61726762U);
    EXPECT_EQ(info.mFrameWidth, 720);
    EXPECT_EQ(info.mFrameHeight, 480);
    EXPECT_EQ(info.mFramePAR, qelmediatypes::PixelAspectRatio(1, 1));
    EXPECT_EQ(info.mFieldType, 0);
    EXPECT_EQ(info.mRenderFormat, 1);
    // Alpha, red, green, blue.
    EXPECT_EQ(info.mUpperFieldColor, (FloatColor{1.0F, 1.0F, 0.5F, 0.25F}));
    EXPECT_EQ(info.mLowerFieldColor, (FloatColor{1.0F, 0.0F, 1.0F, 0.0F}));
    EXPECT_EQ(info.mTopGradiantColorStart, (FloatColor{1.0F, 1.0F, 0.0F, 0.0F}));
    EXPECT_EQ(info.mBottomGradiantColorStart, (FloatColor{1.0F, 0.0F, 1.0F, 0.0F}));
    EXPECT_EQ(info.mTopGradiantColorEnd, (FloatColor{1.0F, 0.5F, 0.5F, 0.5F}));
    EXPECT_EQ(info.mBottomGradiantColorEnd, (FloatColor{1.0F, 1.0F, 0.5F, 0.25F}));
    EXPECT_EQ(info.mVideoDuration.Ticks(), 15'240'960'000'000); // 60 s × 254016000000 ticks
    EXPECT_EQ(info.mVideoFrameRate.ticksPerFrame, 8'467'200'000);
    EXPECT_EQ(info.mVideoDuration.ToFrame32(info.mVideoFrameRate), 60 * 30);
    EXPECT_EQ(info.mSavePath, u"");
    EXPECT_EQ(info.mClipName, u"Default Frame");
    EXPECT_TRUE(info.mDrawFrameFieldNumber);
    EXPECT_EQ(info.mSwatchCoordinatesFilePath, u"");
    EXPECT_EQ(info.mSwatchColorsFilePath, u"");
    EXPECT_EQ(info.mSwatchCoordinates, ImporterTessel::SwatchCoordinates{});
    EXPECT_EQ(info.mSwatchColors, ImporterTessel::SwatchColors{});
    EXPECT_EQ(info.mColorSpace, BR::ColorSpaces::Rec709());
    EXPECT_EQ(info.mSampleRate, 48000.0F);
    EXPECT_EQ(info.mKsAudioChannelType, 2);
    EXPECT_EQ(info.mNumChannels, 2);
    EXPECT_EQ(info.mToneFormat, 0);
    EXPECT_EQ(info.mSteadyToneFrequency, 1000.0F);
    EXPECT_EQ(info.mSteadyToneAmplitude, 0.25F);
    EXPECT_EQ(info.mIdentifierFormat, 0);
}

TEST(TesselInfo, IsRec709AndNotTheHostsDefaultColourSpace)
{
    EXPECT_NE(TesselInfo().mColorSpace, qelmediatypes::color::ColorSpace());
}

TEST(TesselInfo, CopiesEveryField)
{
    std::mt19937_64 random(1);
    for (int round = 0; round < kRounds; ++round) {
        const TesselInfo source = RandomTesselInfo(random);
        const TesselInfo constructed(source); // NOLINT(performance-unnecessary-copy-initialization)
        TesselInfo assigned = RandomTesselInfo(random);
        assigned = source;
        ASSERT_TRUE(constructed == source) << "round " << round;
        ASSERT_TRUE(assigned == source) << "round " << round;
    }
}

TEST(TesselInfo, CopiedListsAreIndependentOfTheirSource)
{
    TesselInfo source;
    source.mSwatchColors.colorSwatches = {1.0F, 2.0F};
    source.mSwatchCoordinates.legalRangeGradient.yCoordinates = {7};
    TesselInfo copy;
    copy = source;
    source.mSwatchColors.colorSwatches[0] = 9.0F;
    source.mSwatchCoordinates.legalRangeGradient.yCoordinates.clear();
    EXPECT_EQ(copy.mSwatchColors.colorSwatches, (std::vector<float>{1.0F, 2.0F}));
    EXPECT_EQ(copy.mSwatchCoordinates.legalRangeGradient.yCoordinates, std::vector<std::int32_t>{7});
}

TEST(TesselInfo, MovesEveryField)
{
    std::mt19937_64 random(2);
    for (int round = 0; round < kRounds; ++round) {
        const TesselInfo original = RandomTesselInfo(random);
        TesselInfo source = original;
        TesselInfo assigned = RandomTesselInfo(random);
        assigned = std::move(source);
        ASSERT_TRUE(assigned == original) << "round " << round;
        const TesselInfo constructed(std::move(assigned));
        ASSERT_TRUE(constructed == original) << "round " << round;
    }
}

TEST(TesselInfo, MoveAssignmentLeavesTheSourceWithoutDurationButWithItsOtherScalars)
{
    std::mt19937_64 random(3);
    for (int round = 0; round < kRounds; ++round) {
        const TesselInfo original = RandomTesselInfo(random);
        TesselInfo source = original;
        TesselInfo destination;
        destination = std::move(source);
        // Of `source`, what was moved out is not looked at; every number is.
        TesselInfo expected = original;
        expected.mVideoDuration = qelmediatypes::TickTime(0);
        // NOLINTNEXTLINE(bugprone-use-after-move)
        for (TesselInfo* const record : {&source, &expected}) {
            record->mSavePath.clear();
            record->mClipName.clear();
            record->mSwatchCoordinatesFilePath.clear();
            record->mSwatchColorsFilePath.clear();
            record->mSwatchCoordinates = {};
            record->mSwatchColors = {};
            record->mColorSpace = {};
        }
        ASSERT_TRUE(source == expected) << "round " << round;
        ASSERT_EQ(source.mVideoFrameRate, original.mVideoFrameRate);
    }
}

TEST(TesselInfo, MoveAssignmentToItselfChangesNothing)
{
    std::mt19937_64 random(4);
    TesselInfo info = RandomTesselInfo(random);
    const TesselInfo original = info;
    TesselInfo& same = info;
    info = std::move(same);
    EXPECT_TRUE(info == original);
}

TEST(TesselInfo, MovesWithoutThrowing)
{
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<TesselInfo>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<TesselInfo>);
}
