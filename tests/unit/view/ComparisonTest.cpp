#include <kestrel/importhost/Importer.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/Container.h>
#include <tessel/view/compare/Comparison.h>
#include <tessel/view/compare/MoviePictures.h>

#include <gtest/gtest.h>
#include <support/ClipFolder.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

namespace tessel::view {
namespace {

class ComparisonTest : public testing::Test {
protected:
    ComparisonTest()
        : mClip(std::make_shared<const ViewedClip>(
              importhost::Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed),
              std::filesystem::path(TEST_SAMPLES) / "sd-pal-interlaced.tessel"))
    {
    }

    /// Frames `first` to 19 of the clip as a movie.
    std::string Movie(const char* container, std::int64_t first = 0)
    {
        const std::filesystem::path file = mFolder.Path() / (std::string("movie.") + container);
        exporting::RenderJob job;
        job.output.container = exporting::ContainerNamed(container);
        job.target = file;
        job.frames = {.first = first, .count = 20 - first};
        static_cast<void>(exporting::Render(mClip->Source(), job));
        return file.string();
    }

    /// The comparison of a frame once verification is done; null if that takes a minute.
    static std::shared_ptr<const ComparedFrame> Wait(Comparison& comparison, std::int64_t frame, int gain)
    {
        comparison.Want(frame, gain);
        for (int i = 0; i < 6000; ++i) {
            auto newest = comparison.Newest();
            if (comparison.IsVerified() && newest && newest->frame == frame && newest->gain == gain) {
                return newest;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return nullptr;
    }

    testsupport::ClipFolder mFolder;
    std::shared_ptr<const ViewedClip> mClip;
};

TEST_F(ComparisonTest, AMovieThatLostNothingShowsNoDifferenceAtAnyGain)
{
    Comparison comparison(mClip, Movie("mov"), [] {});
    const auto compared = Wait(comparison, 12, 64);
    ASSERT_NE(compared, nullptr);
    EXPECT_EQ(compared->picture, 12);
    EXPECT_TRUE(compared->isAligned);
    EXPECT_TRUE(compared->pictures.isSampleBySample);
    EXPECT_EQ(compared->pictures.mostOff, 0.0);
    const exporting::Picture& grey = compared->pictures.difference;
    for (int y = 0; y < grey.height; ++y) {
        for (int x = 0; x < 3; ++x) {
            ASSERT_EQ(grey.planes[0][y * grey.rowBytes[0] + x], std::byte{128});
        }
    }
}

TEST_F(ComparisonTest, FramesAreFoundWhereTheMovieHasThem)
{
    Comparison comparison(mClip, Movie("mov", 5), [] {});
    const auto found = Wait(comparison, 12, 1);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->picture, 7);
    EXPECT_EQ(found->pictures.mostOff, 0.0);
    const auto lacking = Wait(comparison, 3, 1);
    ASSERT_NE(lacking, nullptr);
    EXPECT_EQ(lacking->picture, -1);
    EXPECT_EQ(lacking->trouble, "no picture of the movie shows frame 3");
    ASSERT_NE(comparison.Report(), nullptr);
    EXPECT_FALSE(comparison.Report()->findings.empty());
}

TEST_F(ComparisonTest, TheDifferenceGrowsWithTheGain)
{
    Comparison comparison(mClip, Movie("mp4"), [] {});
    const auto spread = [](const exporting::Picture& picture) {
        int most = 0;
        for (int y = 0; y < picture.height; ++y) {
            for (int x = 0; x < 4 * picture.width; ++x) {
                const int value = std::to_integer<int>(picture.planes[0][y * picture.rowBytes[0] + x]);
                most = x % 4 == 3 ? most : std::max(most, std::abs(value - 128));
            }
        }
        return most;
    };
    const auto plain = Wait(comparison, 3, 1);
    ASSERT_NE(plain, nullptr);
    EXPECT_GT(plain->pictures.mostOff, 0.0);
    EXPECT_NEAR(spread(plain->pictures.difference), plain->pictures.mostOff, 1.0);
    const auto strong = Wait(comparison, 3, 4);
    ASSERT_NE(strong, nullptr);
    EXPECT_EQ(strong->pictures.mostOff, plain->pictures.mostOff);
    EXPECT_NEAR(spread(strong->pictures.difference), std::min(128.0, 4 * plain->pictures.mostOff), 2.0);
}

TEST_F(ComparisonTest, OnceClosedItReportsNothing)
{
    const std::string movie = Movie("mov");
    std::atomic<int> reports{0};
    std::optional<Comparison> comparison(std::in_place, mClip, movie, [&reports] { ++reports; });
    comparison->Want(12, 1);
    comparison.reset(); // while the verification runs
    const int before = reports;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(reports, before);
}

TEST_F(ComparisonTest, PicturesAreHadInAnyOrder)
{
    MoviePictures pictures(Movie("mov"), {1, {25, 1}});
    for (const std::int64_t index : {5, 6, 4, 19, 0, 12}) {
        const auto picture = pictures.Get(index);
        ASSERT_TRUE(picture.has_value()) << index;
        EXPECT_EQ(picture->index, index);
    }
    EXPECT_FALSE(pictures.Get(20).has_value());
    EXPECT_TRUE(pictures.Get(1).has_value());
}

} // namespace
} // namespace tessel::view
