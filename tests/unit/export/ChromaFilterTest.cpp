#include <tessel/export/convert/ChromaFilter.h>

#include <gtest/gtest.h>

#include <vector>

namespace tessel::exporting {
namespace {

std::vector<float> Filter(std::vector<float> samples, int width, int height, int halvings, bool halveHeight,
                          ChromaRows rows = ChromaRows::Frame)
{
    FloatPlane plane = HalveWidth({samples.data(), width, height}, halvings);
    if (halveHeight) {
        plane = HalveHeight(plane, rows);
    }
    return {plane.samples, plane.samples + static_cast<std::ptrdiff_t>(plane.width) * plane.height};
}

TEST(ChromaFilter, ColumnsAreWeighted121AboutEvenOnesWithEdgesRepeated)
{
    EXPECT_EQ(Filter({4, 8, 12, 20}, 4, 1, 1, false), (std::vector<float>{5, 13})); // (4+8+8)/4, (8+24+20)/4
    EXPECT_EQ(Filter({4, 8, 12}, 3, 1, 1, false), (std::vector<float>{5, 11}));     // (8+24+12)/4
}

TEST(ChromaFilter, TwoHalvingsSpreadAnImpulseAs1234321)
{
    std::vector<float> response;
    for (int place = 0; place < 12; ++place) {
        std::vector<float> impulse(12, 0.0F);
        impulse[static_cast<std::size_t>(place)] = 16.0F;
        response.push_back(Filter(impulse, 12, 1, 2, false)[1]); // about column 4
    }
    EXPECT_EQ(response, (std::vector<float>{0, 1, 2, 3, 4, 3, 2, 1, 0, 0, 0, 0}));
}

TEST(ChromaFilter, FramePicturesAverageNeighbouringRows)
{
    EXPECT_EQ(Filter({1, 3, 10, 20, 7}, 1, 5, 0, true), (std::vector<float>{2, 15, 7}));
}

TEST(ChromaFilter, FieldPicturesWeightTopFields3To1AndBottomFields1To3)
{
    // Rows 0, 2 | 1, 3 | 4, 6 | 5, 7.
    EXPECT_EQ(Filter({0, 100, 4, 104, 8, 108, 12, 112}, 1, 8, 0, true, ChromaRows::Field),
              (std::vector<float>{1, 103, 9, 111}));
}

TEST(ChromaFilter, FieldsThatEndEarlyRepeatTheirOwnLastRow)
{
    EXPECT_EQ(Filter({0, 100, 4}, 1, 3, 0, true, ChromaRows::Field), (std::vector<float>{1, 100}));
    EXPECT_EQ(Filter({0, 100}, 1, 2, 0, true, ChromaRows::Field), (std::vector<float>{0}));
    EXPECT_EQ(Filter({5}, 1, 1, 0, true, ChromaRows::Field), (std::vector<float>{5}));
}

} // namespace
} // namespace tessel::exporting
