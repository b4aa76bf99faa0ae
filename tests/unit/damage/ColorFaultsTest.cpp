#include "WorkPictures.h"

#include <tessel/damage/picture/ColorFaults.h>

#include <gtest/gtest.h>

#include <array>

namespace tessel::damage {
namespace {

using exporting::Matrix;
using exporting::PictureLayout;
using testing::CodeAt;
using testing::Flat;

std::array<long, 3> CodesOf(const WorkPicture& picture)
{
    const std::int32_t x = picture.width / 2 >> picture.chromaShiftX;
    return {CodeAt(picture, 0, picture.width / 2, 1), CodeAt(picture, 1, x, 0), CodeAt(picture, 2, x, 0)};
}

// The same colours in the codes of BT.601 and BT.709, 8 and 10 bit, from the standards' equations.
TEST(ColorFaults, AnotherMatrixGivesThatMatrixsCodes)
{
    struct Row {
        PictureLayout layout;
        std::array<double, 3> right;
        std::array<long, 3> wrong;
    };
    const Row rows[] = {
        {PictureLayout::Yuv444p, {173, 42, 26}, {145, 54, 34}},       // green
        {PictureLayout::Yuv444p10, {691, 167, 105}, {578, 215, 137}}, // green
        {PictureLayout::V210, {250, 409, 960}, {326, 361, 960}},      // red
        {PictureLayout::Yuv420p, {32, 240, 118}, {41, 240, 110}},     // blue
        {PictureLayout::Uyvy, {235, 128, 128}, {235, 128, 128}},      // white has no chroma
    };
    for (const Row& row : rows) {
        WorkPicture picture = Flat(row.layout, 12, 4, row.right, {Matrix::Bt709, false});
        UseMatrix(picture, Matrix::Smpte170M);
        const std::array<long, 3> codes = CodesOf(picture);
        for (std::size_t i = 0; i < 3; ++i) {
            // The codes that go in are rounded themselves.
            EXPECT_NEAR(static_cast<double>(codes[i]), static_cast<double>(row.wrong[i]), 1.0)
                << "component " << i << " of layout " << static_cast<int>(row.layout);
        }
    }
}

TEST(ColorFaults, SqueezedAndExpandedRangesUndoEachOther)
{
    WorkPicture picture = Flat(PictureLayout::Yuv444p, 4, 4, {235, 240, 16});
    ChangeRange(picture, RangeFault::Squeezed);
    // 16 + 219 (16 + 219) / 255 = 217.8; 128 + 112 * 224 / 255 = 226.4; 128 - 112 * 224 / 255 = 29.6.
    EXPECT_EQ(CodesOf(picture), (std::array<long, 3>{218, 226, 30}));
    ChangeRange(picture, RangeFault::Expanded);
    EXPECT_EQ(CodesOf(picture), (std::array<long, 3>{235, 240, 16}));
}

TEST(ColorFaults, SwappedRedAndBlueAreTheOtherColoursCodes)
{
    WorkPicture rgb = Flat(PictureLayout::Bgra, 4, 4, {255, 128, 0});
    SwapRedAndBlue(rgb);
    EXPECT_EQ(CodesOf(rgb), (std::array<long, 3>{0, 128, 255}));
    WorkPicture red = Flat(PictureLayout::Yuv422p10, 8, 4, {250, 409, 960});
    SwapRedAndBlue(red);
    EXPECT_EQ(CodesOf(red), (std::array<long, 3>{127, 960, 471})); // blue
}

TEST(ColorFaults, GainOffsetAndSaturationChangeWhatTheySay)
{
    WorkPicture gain = Flat(PictureLayout::Yuv444p, 4, 4, {235, 240, 128});
    MultiplyBy(gain, 0.5);
    EXPECT_EQ(CodesOf(gain), (std::array<long, 3>{126, 184, 128})); // 16 + 109.5; 128 + 56
    WorkPicture offset = Flat(PictureLayout::Bgra, 4, 4, {100, 100, 100});
    Add(offset, 0.2);
    EXPECT_EQ(CodesOf(offset), (std::array<long, 3>{151, 151, 151}));
    WorkPicture saturation = Flat(PictureLayout::Yuv444p, 4, 4, {100, 240, 16});
    ChangeSaturation(saturation, 0.5);
    EXPECT_EQ(CodesOf(saturation), (std::array<long, 3>{100, 184, 72}));
}

TEST(ColorFaults, AQuarterTurnOfHueTakesCbToCr)
{
    WorkPicture picture = Flat(PictureLayout::Yuv444p, 4, 4, {100, 228, 128});
    TurnHue(picture, 90);
    EXPECT_EQ(CodesOf(picture), (std::array<long, 3>{100, 128, 228}));
}

TEST(ColorFaults, BitsThatAreNotKeptAreZero)
{
    WorkPicture picture = Flat(PictureLayout::Yuv422p10, 8, 4, {0x2BB, 0x155, 0x2AA});
    KeepBits(picture, 8);
    EXPECT_EQ(CodesOf(picture), (std::array<long, 3>{0x2B8, 0x154, 0x2A8}));
}

// BT.709: 0.5 becomes 1.0993 * 0.5^0.45 - 0.0993 = 0.7055; back, 0.5 becomes ((0.5993) / 1.0993)^(1 / 0.45) =
// 0.2596.
TEST(ColorFaults, TransferCurvesFollowTheStandards)
{
    WorkPicture twice = Flat(PictureLayout::Gbrp16, 4, 4, {32767.5, 32767.5, 32767.5});
    ChangeTransfer(twice, TransferFault::Twice);
    EXPECT_NEAR(twice.planes[1].Row(0)[0], 0.7055F, 1e-4F);
    WorkPicture linear = Flat(PictureLayout::Gbrp16, 4, 4, {32767.5, 32767.5, 32767.5});
    ChangeTransfer(linear, TransferFault::Linear);
    EXPECT_NEAR(linear.planes[1].Row(0)[0], 0.2597F, 1e-4F);
    ChangeTransfer(linear, TransferFault::Twice);
    EXPECT_NEAR(linear.planes[1].Row(0)[0], 0.5F, 1e-4F);
}

TEST(ColorFaults, ThinnedChromaIsTheSameOnEachSharedSite)
{
    WorkPicture picture = testing::Numbered(PictureLayout::Yuv444p, 8, 4);
    ThinChroma(picture, Thinning::To420);
    // Rows 0 and 1 share the mean of their even columns; columns between are interpolated.
    EXPECT_FLOAT_EQ(picture.planes[1].Row(0)[2], 52.0F);
    EXPECT_FLOAT_EQ(picture.planes[1].Row(1)[2], 52.0F);
    EXPECT_FLOAT_EQ(picture.planes[1].Row(1)[3], 53.0F);
    EXPECT_FLOAT_EQ(picture.planes[0].Row(1)[3], 103.0F) << "luma stays";
}

TEST(ColorFaults, ShiftedChromaMovesInLumaPixels)
{
    WorkPicture picture = testing::Numbered(PictureLayout::Yuv422p10, 16, 4);
    ShiftChroma(picture, 1, 0);
    // One luma pixel is half a chroma sample: between samples 2 and 3.
    EXPECT_FLOAT_EQ(picture.planes[1].Row(0)[3], 2.5F);
    EXPECT_FLOAT_EQ(picture.planes[0].Row(0)[3], 3.0F) << "luma stays";
}

TEST(ColorFaults, PremultipliedColourIsColourTimesAlpha)
{
    WorkPicture picture = Flat(PictureLayout::Bgra, 4, 4, {200, 100, 50});
    picture.planes[3].samples.assign(picture.planes[3].samples.size(), 0.5F);
    ChangeAlpha(picture, AlphaFault::Premultiplied);
    EXPECT_EQ(CodesOf(picture), (std::array<long, 3>{100, 50, 25}));
    ChangeAlpha(picture, AlphaFault::Opaque);
    EXPECT_EQ(CodeAt(picture, 3, 0, 0), 255);
}

} // namespace
} // namespace tessel::damage
