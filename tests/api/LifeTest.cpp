/// The C interface in many threads, and what lives how long. Python tests hold its values against the
/// program's; this program runs under the sanitizers.

#include "ApiClips.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <thread>
#include <utility>

namespace {

using namespace apitests;
namespace fs = std::filesystem;

constexpr int kThreads = 8;

void InThreads(const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int index = 0; index < kThreads; ++index) {
        threads.emplace_back(work, index);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(ClipLife, FiftySixClipsLiveAtOnceInEightThreads)
{
    constexpr int kEach = 7;
    std::vector<std::string> texts;
    std::vector<std::vector<Bytes>> frames;
    for (int index = 0; index < kEach; ++index) {
        texts.push_back(TextOf(16 + 2 * index));
        frames.push_back(FrameOf(OpenText(texts.back()).get(), index));
    }
    std::atomic<int> open = 0;
    InThreads([&](int thread) {
        std::vector<Clip> clips;
        for (const std::string& text : texts) {
            clips.push_back(OpenText(text));
        }
        // All threads have theirs before the first closes one.
        for (open += kEach; open < kThreads * kEach;) {
            std::this_thread::yield();
        }
        for (int turn = 0; turn < kEach; ++turn) {
            const auto index = static_cast<std::size_t>((thread + turn) % kEach);
            EXPECT_EQ(FrameOf(clips[index].get(), static_cast<std::int64_t>(index)), frames[index]);
            clips[index].reset();
        }
    });
}

TEST(ClipLife, OneClipServesPicturesAndSoundToManyThreads)
{
    const Clip clip = OpenText(TextOf(16));
    std::vector<std::vector<Bytes>> frames;
    for (std::int64_t number = 0; number < 5; ++number) {
        frames.push_back(FrameOf(clip.get(), number));
    }
    const std::vector<float> sound = SamplesOf(clip.get(), 0, 20'000);
    InThreads([&](int thread) {
        for (int turn = 0; turn < 20; ++turn) {
            const auto number = static_cast<std::size_t>((thread + turn) % 5);
            EXPECT_EQ(FrameOf(clip.get(), static_cast<std::int64_t>(number)), frames[number]);
            const auto start = static_cast<std::size_t>((thread * 977 + turn * 1213) % 19'000);
            const std::vector<float> samples = SamplesOf(clip.get(), static_cast<std::int64_t>(start), 100);
            EXPECT_TRUE(
                std::equal(samples.begin(), samples.end(), sound.begin() + static_cast<std::ptrdiff_t>(start)));
        }
    });
}

TEST(ClipLife, ClipsOpenWhileTheLastOneClosesAndTakesThePlugInAlong)
{
    const std::string text = TextOf(16);
    const std::vector<Bytes> expected = FrameOf(OpenText(text).get(), 3);
    InThreads([&](int thread) {
        for (int turn = 0; turn < 12; ++turn) {
            const Clip clip = OpenText(text);
            if ((thread + turn) % 3 == 0) {
                EXPECT_EQ(FrameOf(clip.get(), 3), expected);
            }
        }
    });
}

/// Each frame in each layout that the clip can be had in.
std::map<tessel_layout, std::vector<std::vector<Bytes>>> AllFramesOf(tessel_clip* clip, std::int64_t count)
{
    std::map<tessel_layout, std::vector<std::vector<Bytes>>> frames;
    for (int layout = TESSEL_LAYOUT_OWN; layout <= TESSEL_LAYOUT_YUVA444P10; ++layout) {
        for (std::int64_t number = 0; number < count; ++number) {
            const auto wanted = static_cast<tessel_layout>(layout);
            frames[wanted].push_back(FrameOf(clip, number, wanted));
        }
    }
    return frames;
}

TEST(ClipLife, AStormOfSeeksInEveryLayoutGivesTheSamePictures)
{
    constexpr std::int64_t kFrames = 20;
    const std::string text = TextOf(16);
    const auto expected = AllFramesOf(OpenText(text).get(), kFrames);
    for (const auto& [layout, frames] : expected) {
        EXPECT_NE(frames.front(), frames.back()) << layout; // else any frame would do
    }
    const Clip clip = OpenText(text);
    InThreads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int turn = 0; turn < 100; ++turn) {
            const std::int64_t number = random() % kFrames;
            const auto& [layout, frames] =
                *std::next(expected.begin(), static_cast<std::ptrdiff_t>(random() % expected.size()));
            ASSERT_EQ(FrameOf(clip.get(), number, layout), frames[static_cast<std::size_t>(number)])
                << thread << ' ' << turn << " layout " << layout;
        }
    });
}

TEST(ClipLife, NumbersFarBehindTheEndAreServedOrRefusedAndNeverOverflow)
{
    const Clip clip = OpenText(TextOf(16));
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
    for (const std::int64_t number : {kLast, kLast - 1, kLast / 2, std::int64_t{1} << 40}) {
        EXPECT_EQ(FrameOf(clip.get(), number).size(), 3U); // the planes of 4:2:2
    }
    float samples[2][8] = {};
    float* const channels[] = {samples[0], samples[1]};
    EXPECT_EQ(tessel_samples(clip.get(), kLast / 2, 8, channels, 2), TESSEL_OK) << tessel_error_text();
    EXPECT_EQ(tessel_samples(clip.get(), kLast, 8, channels, 2), TESSEL_BAD_ARGUMENT);
    EXPECT_EQ(tessel_samples(clip.get(), 0, std::numeric_limits<std::size_t>::max(), channels, 2),
              TESSEL_BAD_ARGUMENT);
    const Movie movie = OpenMovie(clip.get());
    EXPECT_EQ(Read(movie.get(), kLast, 10), Bytes());
    EXPECT_EQ(Read(movie.get(), tessel_movie_size(movie.get()) - 1, 10).size(), 1U);
}

TEST(ClipLife, ADocumentThatIsRemovedWhileItIsOpenGoesOn)
{
    const fs::path file = fs::path(::testing::TempDir()) / "removed-while-open.tessel";
    std::ofstream(file) << TextOf(16);
    const Clip clip = OpenFile(file);
    const Movie movie = OpenMovie(clip.get());
    fs::remove(file);
    const Clip other = OpenText(TextOf(16));
    EXPECT_EQ(FrameOf(clip.get(), 7), FrameOf(other.get(), 7));
    EXPECT_EQ(SamplesOf(clip.get(), 3, 100), SamplesOf(other.get(), 3, 100));
    const Bytes whole = Whole(OpenMovie(other.get()).get());
    EXPECT_TRUE(Whole(movie.get()) == whole);
    EXPECT_TRUE(Whole(OpenMovie(clip.get()).get()) == whole); // opened after the removal
}

TEST(ClipLife, ADocumentThatIsWrittenAnewWhileItIsOpenShowsWhenItIsOpenedAgain)
{
    const fs::path file = fs::path(::testing::TempDir()) / "written-anew-while-open.tessel";
    std::ofstream(file) << TextOf(16);
    const Clip before = OpenFile(file);
    std::ofstream(file) << TextOf(18);
    const Clip after = OpenFile(file);
    EXPECT_EQ(FrameOf(before.get(), 7), FrameOf(OpenText(TextOf(16)).get(), 7));
    EXPECT_EQ(FrameOf(after.get(), 7), FrameOf(OpenText(TextOf(18)).get(), 7));
}

TEST(MovieLife, AStormOfSeeksFromManyThreadsReadsTheSameBytes)
{
    const Clip clip = OpenText(TextOf(16));
    const Movie movie = OpenMovie(clip.get());
    const Bytes whole = Whole(OpenMovie(clip.get()).get());
    InThreads([&](int thread) {
        std::mt19937 random(static_cast<unsigned>(thread));
        for (int turn = 0; turn < 200; ++turn) {
            const std::size_t offset = random() % whole.size();
            const std::size_t count = std::min<std::size_t>(random() % 6000, whole.size() - offset);
            const Bytes piece = Read(movie.get(), static_cast<std::int64_t>(offset), count);
            const auto begin = whole.begin() + static_cast<std::ptrdiff_t>(offset);
            ASSERT_EQ(piece, Bytes(begin, begin + static_cast<std::ptrdiff_t>(count))) << thread << ' ' << turn;
        }
    });
}

TEST(MovieLife, AMovieIsReadOnWhileItsClipAndItsNeighboursClose)
{
    Clip clip = OpenText(TextOf(16));
    std::vector<Movie> movies;
    for (int index = 0; index < kThreads; ++index) {
        movies.push_back(OpenMovie(clip.get()));
    }
    const Bytes whole = Whole(movies[0].get());
    clip.reset();
    InThreads([&](int thread) {
        Movie& movie = movies[static_cast<std::size_t>(thread)];
        EXPECT_EQ(Whole(movie.get()), whole);
        movie.reset();
    });
}

TEST(DocumentLife, DocumentsAreMadeAndChangedInManyThreads)
{
    const std::string expected = TextOf(16);
    InThreads([&](int /*thread*/) {
        for (int turn = 0; turn < 5; ++turn) {
            EXPECT_EQ(TextOf(16), expected);
        }
    });
}

TEST(ErrorText, BelongsToItsThread)
{
    InThreads([](int thread) {
        const std::string name = "/missing-" + std::to_string(thread) + ".tessel";
        for (int turn = 0; turn < 20; ++turn) {
            tessel_clip* clip = nullptr;
            EXPECT_EQ(tessel_open_file(name.c_str(), nullptr, &clip), TESSEL_NOT_OPENED);
            EXPECT_NE(std::string(tessel_error_text()).find(name), std::string::npos) << tessel_error_text();
        }
    });
}

} // namespace
