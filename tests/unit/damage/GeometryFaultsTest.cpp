#include "WorkPictures.h"

#include <tessel/damage/picture/GeometryFaults.h>

#include <gtest/gtest.h>

namespace tessel::damage {
namespace {

using exporting::PictureLayout;

TEST(GeometryFaults, CroppedPicturesKeepChromaInItsPlace)
{
    const WorkPicture cropped = Cropped(testing::Numbered(PictureLayout::Yuv420p, 16, 8), {4, 2, 2, 2});
    EXPECT_EQ(cropped.width, 10);
    EXPECT_EQ(cropped.height, 4);
    EXPECT_EQ(cropped.planes[0].Row(0)[0], 204.0F); // line 2, column 4
    EXPECT_EQ(cropped.planes[1].Row(0)[0], 102.0F); // line 1, column 2
}

TEST(GeometryFaults, PaddedPicturesHaveBlackEdges)
{
    const WorkPicture padded = Padded(testing::Numbered(PictureLayout::Yuv444p, 8, 4), {2, 4, 2, 6});
    EXPECT_EQ(padded.width, 14);
    EXPECT_EQ(padded.height, 12);
    EXPECT_EQ(padded.planes[0].Row(1)[3], 0.0F);
    EXPECT_EQ(padded.planes[0].Row(3)[3], 101.0F);
    EXPECT_EQ(padded.planes[0].Row(3)[10], 0.0F);
}

TEST(GeometryFaults, ShiftedPicturesAreLinearBetweenPixels)
{
    const WorkPicture shifted = Shifted(testing::Numbered(PictureLayout::Yuv444p, 8, 4), 2.5, 1);
    EXPECT_FLOAT_EQ(shifted.planes[0].Row(2)[5], 102.5F);
    EXPECT_FLOAT_EQ(shifted.planes[0].Row(0)[0], 0.0F) << "edges repeat";
}

TEST(GeometryFaults, HalvedPicturesAreMeansOfFour)
{
    const WorkPicture half = Scaled(testing::Numbered(PictureLayout::Yuv444p, 8, 4), 4, 2);
    EXPECT_FLOAT_EQ(half.planes[0].Row(0)[0], 50.5F);  // of 0, 1, 100, 101
    EXPECT_FLOAT_EQ(half.planes[0].Row(1)[3], 256.5F); // of 206, 207, 306, 307
}

TEST(GeometryFaults, DoubledPicturesAreLinearBetweenCentres)
{
    const WorkPicture twice = Scaled(testing::Numbered(PictureLayout::Yuv444p, 8, 4), 16, 4);
    EXPECT_FLOAT_EQ(twice.planes[0].Row(1)[5], 102.25F); // centre of column 5 of 16 is at 2.25 of 8
}

TEST(GeometryFaults, FlipsAndTurnsMovePixelsWhole)
{
    const WorkPicture picture = testing::Numbered(PictureLayout::Yuv444p, 8, 4);
    EXPECT_EQ(FlippedLeftRight(picture).planes[0].Row(1)[0], 107.0F);
    EXPECT_EQ(FlippedTopBottom(picture).planes[0].Row(0)[3], 303.0F);
    const WorkPicture quarter = Turned(picture, 1);
    EXPECT_EQ(quarter.width, 4);
    EXPECT_EQ(quarter.height, 8);
    EXPECT_EQ(quarter.planes[0].Row(0)[0], 300.0F) << "clockwise: the lower left corner comes up";
    const WorkPicture whole = Turned(Turned(Turned(quarter, 1), 1), 1);
    EXPECT_EQ(whole.planes[0].samples, picture.planes[0].samples);
    EXPECT_EQ(Turned(picture, 3).planes[0].Row(0)[0], 7.0F) << "the upper right corner";
}

TEST(GeometryFaults, ThinnedChromaTurnsWithItsPicture)
{
    const WorkPicture turned = Turned(testing::Numbered(PictureLayout::Yuv422p10, 8, 8), 1);
    EXPECT_EQ(turned.planes[1].width, 4);
    EXPECT_EQ(turned.planes[1].height, 8);
    // Row 0 of the turned picture is column 0 of chroma from the bottom up: rows 7, 5, 3, 1.
    EXPECT_EQ(turned.planes[1].Row(0)[0], 700.0F);
    EXPECT_EQ(turned.planes[1].Row(0)[3], 100.0F);
}

} // namespace
} // namespace tessel::damage
