#include <tessel/verify/judge/order/EditScript.h>
#include <tessel/view/compare/FrameMap.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace tessel::view {
namespace {

/// The map of a movie whose pictures show these frames, as verification describes it.
FrameMap MapOfMovie(const std::vector<std::int64_t>& shown, std::int64_t frameCount)
{
    verify::AlignmentReport report;
    report.frames = frameCount;
    report.pictures = static_cast<std::int64_t>(shown.size());
    report.matched = report.pictures;
    report.steps = verify::judge::MakeEditScript(shown, frameCount).steps;
    return MapOf(report);
}

/// Each frame that some picture shows is found in such a picture, and no other one is found.
void ExpectFound(const std::vector<std::int64_t>& shown, std::int64_t frameCount)
{
    const FrameMap map = MapOfMovie(shown, frameCount);
    ASSERT_EQ(map.size(), static_cast<std::size_t>(frameCount));
    for (std::int64_t frame = 0; frame < frameCount; ++frame) {
        const std::int64_t picture = map[static_cast<std::size_t>(frame)];
        const bool isShown = std::find(shown.begin(), shown.end(), frame) != shown.end();
        ASSERT_EQ(picture >= 0, isShown) << "frame " << frame;
        if (isShown) {
            EXPECT_EQ(shown[static_cast<std::size_t>(picture)], frame);
        }
    }
}

TEST(FrameMap, FindsFramesBesideMissingAndRepeatedOnes)
{
    ExpectFound({0, 1, 2, 3, 4, 5, 6, 7}, 8);
    ExpectFound({0, 1, 3, 4, 5, 6, 7}, 8);
    ExpectFound({0, 1, 2, 2, 3, 4, 5, 6, 7}, 8);
    ExpectFound({2, 3, 4, 5, 6}, 8);
}

TEST(FrameMap, FindsFramesThatWereSwappedOrReversed)
{
    ExpectFound({0, 1, 3, 2, 4, 5, 6, 7}, 8);
    ExpectFound({0, 4, 2, 3, 1, 5, 6, 7}, 8);
    ExpectFound({7, 6, 5, 4, 3, 2, 1, 0}, 8);
    ExpectFound({0, 1, 7, 6, 5, 4, 3, 2, 8, 9}, 10);
}

TEST(FrameMap, PassesOverPicturesThatAreNotOfTheClip)
{
    ExpectFound({-1, -1, 0, 1, 2, 3, -1, 4, 5, 6, 7}, 8);
    ExpectFound({0, 1, 2, 6, 3, 4, 5, 6, 7}, 8);
}

TEST(FrameMap, WhereThePictureFreezesItsPicturesStandForTheFramesThatAreLacking)
{
    EXPECT_EQ(MapOfMovie({0, 1, 1, 1, 4, 5, 6, 7}, 8), (FrameMap{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST(FrameMap, WithoutAnAlignmentPicturesAreCounted)
{
    verify::AlignmentReport report;
    report.frames = 4;
    report.pictures = 3;
    EXPECT_EQ(MapOf(report), (FrameMap{0, 1, 2, -1}));
}

} // namespace
} // namespace tessel::view
