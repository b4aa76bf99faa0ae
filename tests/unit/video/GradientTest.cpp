#include "FrameHost.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/pixmill/Fill.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace testsupport;
using ImporterTessel::FloatColor;
using ImporterTessel::TesselInfo;

namespace {

using Pixel = std::array<float, 4>; // blue, green, red, alpha

Pixel PixelOf(const FloatColor& color)
{
    return {color.mBluePart, color.mGreenPart, color.mRedPart, color.mAlphaPart};
}

/// The rule once more, component by component.
Pixel Model(const TesselInfo& info, std::uint32_t row, std::int64_t frame, std::int64_t frames)
{
    const double exactShare = static_cast<double>(frame) / static_cast<double>(frames);
    const auto t = static_cast<float>(exactShare);
    const float s = static_cast<float>(row) / static_cast<float>(info.mFrameHeight);
    const Pixel topStart = PixelOf(info.mTopGradiantColorStart), topEnd = PixelOf(info.mTopGradiantColorEnd);
    const Pixel bottomStart = PixelOf(info.mBottomGradiantColorStart);
    const Pixel bottomEnd = PixelOf(info.mBottomGradiantColorEnd);
    Pixel result{};
    for (std::size_t i = 0; i < 4; ++i) {
        const volatile float top = topStart[i] + (topEnd[i] - topStart[i]) * t;
        const volatile float bottom = bottomStart[i] + (bottomEnd[i] - bottomStart[i]) * t;
        result[i] = top + (bottom - top) * s;
    }
    return result;
}

TesselInfo GradientClip(BR::PixelFormat format, std::int32_t width, std::int32_t height)
{
    TesselInfo info = SmallClip(SdkCodeOf(format), width, height);
    info.mTopGradiantColorStart = {
        .mAlphaPart = 0.1F, .mRedPart = 0.9F, .mGreenPart = -0.3F, .mBluePart = 7.0F};
    info.mBottomGradiantColorStart = {
        .mAlphaPart = 1.0F, .mRedPart = 0.3F, .mGreenPart = 1.7F, .mBluePart = 0.0F};
    info.mTopGradiantColorEnd = {.mAlphaPart = 0.7F, .mRedPart = 0.2F, .mGreenPart = 0.6F, .mBluePart = 0.1F};
    info.mBottomGradiantColorEnd = {
        .mAlphaPart = 0.3F, .mRedPart = 0.8F, .mGreenPart = 0.4F, .mBluePart = 0.9F};
    return info;
}

TEST(Gradient, Frame0BeginsWithExactlyTheStartColour)
{
    FrameHost host;
    const TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_32f, 3, 480);
    ASSERT_EQ(host.Request(info), ksResultServed);
    EXPECT_EQ(FloatPixel(host.Row(0), 0), PixelOf(info.mTopGradiantColorStart));
    EXPECT_NE(FloatPixel(host.Row(479), 0), PixelOf(info.mBottomGradiantColorStart));
}

TEST(Gradient, TheDefaultClipBeginsWithPureRed)
{
    FrameHost host;
    TesselInfo info;
    info.mDrawFrameFieldNumber = false;
    ASSERT_EQ(host.Request(info), ksResultServed);
    const std::array<int, 4> expected{0, 0, 255, 255}; // blue, green, red, alpha
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(std::to_integer<int>(host.Row(0)[i]), expected[i]);
    }
}

// Numbers that floats hold exactly, so that no rounding hides a wrong rule.
TEST(Gradient, GoesFromTopToBottomAndFromStartToEndInEqualSteps)
{
    TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_32f), 1, 4);
    info.mVideoDuration = qelmediatypes::TickTime(4 * info.mVideoFrameRate.ticksPerFrame);
    info.mTopGradiantColorStart = {.mAlphaPart = 1, .mRedPart = 0, .mGreenPart = 4, .mBluePart = 0};
    info.mTopGradiantColorEnd = {.mAlphaPart = 1, .mRedPart = 1, .mGreenPart = 0, .mBluePart = 0};
    info.mBottomGradiantColorStart = {.mAlphaPart = 0, .mRedPart = 8, .mGreenPart = 4, .mBluePart = 0};
    info.mBottomGradiantColorEnd = {.mAlphaPart = 0, .mRedPart = 16, .mGreenPart = 0, .mBluePart = -16};
    struct Row {
        std::int64_t frame;
        std::uint32_t row;
        Pixel pixel; // blue, green, red, alpha
    };
    for (const Row& expected : {
             Row{0, 0, {0, 4, 0, 1}}, Row{0, 1, {0, 4, 2, 0.75F}}, // red 0 + (8 - 0) / 4
             Row{0, 3, {0, 4, 6, 0.25F}},                          // the bottom colour would be row 4
             Row{1, 0, {0, 3, 0.25F, 1}},                          // red 0 + (1 - 0) / 4
             Row{2, 1, {-2, 2, 3.375F, 0.75F}},                    // red 0.5 + (12 - 0.5) / 4
             Row{3, 2, {-6, 1, 7.375F, 0.5F}}, // red 0.75 + (14 - 0.75) / 2; the end colours would be frame 4
             Row{5, 0, {0, -1, 1.25F, 1}},     // beyond the clip it goes on
         }) {
        FrameHost host;
        ASSERT_EQ(host.Request(info, expected.frame * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
        EXPECT_EQ(FloatPixel(host.Row(expected.row), 0), expected.pixel)
            << "frame " << expected.frame << " row " << expected.row;
    }
}

TEST(Gradient, EveryRowOfEveryFrameFollowsTheRule)
{
    for (const std::int32_t height : {1, 2, 3, 33, 480}) {
        TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_32f, 2, height);
        info.mVideoDuration = qelmediatypes::TickTime(7 * info.mVideoFrameRate.ticksPerFrame);
        for (std::int64_t frame = 0; frame < 7; ++frame) {
            for (const bool backwards : {false, true}) {
                FrameHost host({.backwards = backwards});
                ASSERT_EQ(host.Request(info, frame * info.mVideoFrameRate.ticksPerFrame + 12345),
                          ksResultServed);
                for (std::uint32_t row = 0; row < static_cast<std::uint32_t>(height); ++row) {
                    ASSERT_EQ(FloatPixel(host.Row(row), 1), Model(info, row, frame, 7))
                        << "height " << height << " frame " << frame << " row " << row;
                }
                EXPECT_TRUE(host.GuardsAreIntact());
            }
        }
    }
}

TEST(Gradient, ColoursInEveryFormatAreThoseOfAFillWithTheRowsColour)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        TesselInfo info = GradientClip(BR::SDKToBEPixelFormat(format.sdkCode), 31, 17);
        FrameHost host;
        ASSERT_EQ(host.Request(info, 30 * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
        for (std::uint32_t row = 0; row < 17; ++row) {
            std::vector<std::byte> expected(RowLength(format.code, 31), FrameHost::kUnpainted);
            const Pixel color = Model(info, row, 30, 1800); // 60 s of 30 frames
            ASSERT_EQ(PM_FillWithColor(expected.data(), 0, 31, 1, format.code, color.data(), 260), 0);
            ASSERT_EQ(host.RowCopy(row), expected) << format.name << " row " << row;
        }
        EXPECT_TRUE(host.GuardsAreIntact()) << format.name;
    }
}

TEST(Gradient, FieldTypeDoesNotMatter)
{
    TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_8u, 5, 9);
    std::vector<std::vector<std::byte>> rows;
    for (const std::int32_t fieldType : {0, 1, 2}) {
        FrameHost host;
        info.mFieldType = fieldType;
        ASSERT_EQ(host.Request(info), ksResultServed);
        EXPECT_FALSE(host.IsUnpainted(8));
        rows.push_back(host.RowCopy(8));
    }
    EXPECT_EQ(rows[0], rows[1]);
    EXPECT_EQ(rows[0], rows[2]);
}

TEST(Gradient, AFrameBeforeTheClipCountsAsANumberNear2To32)
{
    FrameHost host;
    const TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_32f, 1, 4);
    ASSERT_EQ(host.Request(info, -1), ksResultServed);
    for (std::uint32_t row = 0; row < 4; ++row) {
        EXPECT_EQ(FloatPixel(host.Row(row), 0), Model(info, row, 4294967295, 1800));
    }
}

TEST(Gradient, AClipOfNegativeDurationRunsAwayFromItsEndColours)
{
    TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_32f, 1, 4);
    info.mVideoDuration = qelmediatypes::TickTime(-7 * info.mVideoFrameRate.ticksPerFrame);
    for (const std::int64_t frame : {0, 1, 5}) {
        FrameHost host;
        ASSERT_EQ(host.Request(info, frame * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
        for (std::uint32_t row = 0; row < 4; ++row) {
            // The frame counts as unsigned, the clip's length as signed.
            EXPECT_EQ(FloatPixel(host.Row(row), 0), Model(info, row, frame, -7)) << "frame " << frame;
        }
    }
}

TEST(Gradient, AClipOfNoFramesDividesByZero)
{
    TesselInfo info = GradientClip(BR::PixelFormat::BGRA_4444_32f, 1, 2);
    info.mVideoDuration = qelmediatypes::TickTime(info.mVideoFrameRate.ticksPerFrame - 1);
    FrameHost first;
    ASSERT_EQ(first.Request(info, 0), ksResultServed); // 0 / 0
    for (const float component : FloatPixel(first.Row(0), 0)) {
        EXPECT_TRUE(std::isnan(component));
    }
    FrameHost second;
    ASSERT_EQ(second.Request(info, info.mVideoFrameRate.ticksPerFrame), ksResultServed); // 1 / 0
    const Pixel pixel = FloatPixel(second.Row(0), 0);
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    // start + (end - start)·∞: blue falls from 7.0 to 0.1, green rises, red falls, alpha rises. Row 0 then
    // adds (bottom - top)·0, which is NaN for an infinite difference.
    for (const float component : pixel) {
        EXPECT_TRUE(std::isnan(component) || std::abs(component) == kInfinity);
    }
}

TEST(Gradient, IntegerFormatsSurviveAClipOfNoFrames)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        TesselInfo info = GradientClip(BR::SDKToBEPixelFormat(format.sdkCode), 8, 8);
        info.mVideoDuration = qelmediatypes::TickTime(0);
        for (const std::int64_t frame : {0, 1, -1}) {
            FrameHost host;
            EXPECT_EQ(host.Request(info, frame * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
            EXPECT_TRUE(host.GuardsAreIntact());
        }
    }
}

TEST(Gradient, AHeightOfZeroPaintsNothing)
{
    FrameHost host;
    EXPECT_EQ(host.Request(GradientClip(BR::PixelFormat::BGRA_4444_8u, 4, 0)), ksResultServed);
    EXPECT_TRUE(host.GuardsAreIntact());
}

} // namespace
