#include "WorkPictures.h"

#include <tessel/damage/picture/FieldFaults.h>

#include <gtest/gtest.h>

#include <vector>

namespace tessel::damage {
namespace {

using exporting::PictureLayout;

/// The first sample of every line; line y of `Numbered` begins with 100 y.
std::vector<float> LinesOf(const WorkPicture& picture)
{
    std::vector<float> lines;
    for (std::int32_t y = 0; y < picture.height; ++y) {
        lines.push_back(picture.planes[0].Row(y)[0]);
    }
    return lines;
}

const WorkPicture kFiveLines = testing::Numbered(PictureLayout::Gbrp16, 4, 5);

TEST(FieldFaults, SwappedFieldsExchangeThePairsOfLines)
{
    EXPECT_EQ(LinesOf(WithFieldsSwapped(kFiveLines)), (std::vector<float>{100, 0, 300, 200, 400}));
}

TEST(FieldFaults, WovenPicturesTakeLinesInTurn)
{
    const WorkPicture black = BlackLike(kFiveLines, 4, 5);
    EXPECT_EQ(LinesOf(Woven(kFiveLines, black)), (std::vector<float>{0, 0, 200, 0, 400}));
    EXPECT_EQ(LinesOf(Woven(black, kFiveLines)), (std::vector<float>{0, 100, 0, 300, 0}));
}

TEST(FieldFaults, BlendedFieldsAreTheMeanOfEachPair)
{
    EXPECT_EQ(LinesOf(WithFieldsBlended(kFiveLines)), (std::vector<float>{50, 50, 250, 250, 400}));
}

TEST(FieldFaults, DoubledLinesComeFromTheFieldThatIsKept)
{
    EXPECT_EQ(LinesOf(LineDoubled(kFiveLines, Parity::Upper)), (std::vector<float>{0, 0, 200, 200, 400}));
    EXPECT_EQ(LinesOf(LineDoubled(kFiveLines, Parity::Lower)), (std::vector<float>{100, 100, 300, 300, 400}));
}

TEST(FieldFaults, DeinterlacedLinesAreBetweenTheirNeighbours)
{
    WorkPicture picture = kFiveLines;
    picture.planes[0].Row(3)[0] = 7.0F; // of the field that is not kept
    EXPECT_EQ(LinesOf(Deinterlaced(picture, Parity::Upper)), (std::vector<float>{0, 100, 200, 300, 400}));
}

} // namespace
} // namespace tessel::damage
