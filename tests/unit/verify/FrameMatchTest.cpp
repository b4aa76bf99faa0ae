#include "GreyPicture.h"

#include <tessel/verify/align/FrameMatch.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

namespace tessel::verify::align {
namespace {

constexpr int kSceneWidth = 160;
constexpr int kSceneHeight = 106;

/// The scene's level, 0 to 255, at every place.
GreyPicture Grey(int width, int height, const std::function<double(int x, int y)>& scene)
{
    GreyPicture picture{width, height, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            picture.samples.push_back(static_cast<std::uint8_t>(std::lround(scene(x, y))));
        }
    }
    return picture;
}

/// A ramp from top to bottom under a black plate in the corner with two white strokes on it.
double Scene(int x, int y)
{
    const bool isPlate = x >= 8 && x < 62 && y >= 5 && y < 22;
    const bool isStroke = isPlate && y >= 7 && y < 20 && ((x >= 20 && x < 23) || (x >= 41 && x < 44));
    return isStroke ? 235 : isPlate ? 16 : 60 + y;
}

/// Stripes, which tell rows apart and columns not.
double Stripes(int /*x*/, int y)
{
    return 60 + 50 * (y * y / 9 % 3);
}

double Darker(double level)
{
    return 20 + 0.8 * level;
}

TEST(FrameMatch, FindsACropThatCutsThePlate)
{
    const GreyPicture clip = Grey(kSceneWidth, kSceneHeight, Scene);
    const GreyPicture movie = Grey(128, 74, [](int x, int y) { return Darker(Scene(x + 16, y + 14)); });
    const std::optional<Placement> found = MatchFrame(clip.View(), movie.View());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offsetX, -16);
    EXPECT_EQ(found->offsetY, -14);
    EXPECT_EQ(found->scaleX, 1);
}

TEST(FrameMatch, FindsAddedEdgesBesideACropInHeight)
{
    const GreyPicture clip = Grey(kSceneWidth, kSceneHeight, Scene);
    const GreyPicture movie = Grey(kSceneWidth + 20, kSceneHeight - 12, [](int x, int y) {
        return x < 6 || x >= 6 + kSceneWidth ? 16.0 : Scene(x - 6, y + 12);
    });
    const std::optional<Placement> found = MatchFrame(clip.View(), movie.View());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offsetX, 6);
    EXPECT_EQ(found->offsetY, -12);
}

TEST(FrameMatch, TakesTheMiddleWhereNothingTells)
{
    const GreyPicture clip = Grey(kSceneWidth, kSceneHeight, Stripes);
    const GreyPicture movie =
        Grey(kSceneWidth - 40, kSceneHeight - 20, [](int x, int y) { return Stripes(x, y + 3); });
    const std::optional<Placement> found = MatchFrame(clip.View(), movie.View());
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offsetX, -20);
    EXPECT_EQ(found->offsetY, -3);
}

TEST(FrameMatch, AScaledFrameIsNoCrop)
{
    const GreyPicture clip = Grey(kSceneWidth, kSceneHeight, Scene);
    const GreyPicture movie = Grey(80, 53, [](int x, int y) { return Scene(2 * x, 2 * y); });
    EXPECT_FALSE(MatchFrame(clip.View(), movie.View()));
}

} // namespace
} // namespace tessel::verify::align
