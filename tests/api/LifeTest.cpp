/// The C interface in many threads, and what lives how long. Python tests hold its values against the
/// program's; this program runs under the sanitizers.

#include <tessel/api/tessel.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Closer {
    void operator()(tessel_clip* clip) const { tessel_close(clip); }
    void operator()(tessel_movie* movie) const { tessel_movie_close(movie); }
    void operator()(tessel_document* document) const { tessel_document_close(document); }
};
using Clip = std::unique_ptr<tessel_clip, Closer>;
using Movie = std::unique_ptr<tessel_movie, Closer>;
using Document = std::unique_ptr<tessel_document, Closer>;
using Bytes = std::vector<std::byte>;

constexpr int kThreads = 8;

/// The text of a small clip of 20 frames with sound, `rows` high.
std::string TextOf(int rows)
{
    const std::string size = "size=64x" + std::to_string(rows);
    const std::vector<const char*> settings{size.c_str(), "rate=29.97", "duration=20f", "pixel-format=v210"};
    tessel_document* made = nullptr;
    EXPECT_EQ(tessel_document_new(nullptr, settings.data(), settings.size(), &made), TESSEL_OK)
        << tessel_error_text();
    const Document document(made);
    return tessel_document_text(made, nullptr);
}

Clip OpenText(const std::string& text)
{
    tessel_clip* clip = nullptr;
    EXPECT_EQ(tessel_open_text(text.data(), text.size(), nullptr, &clip), TESSEL_OK) << tessel_error_text();
    return Clip(clip);
}

Movie OpenMovie(tessel_clip* clip)
{
    tessel_movie* movie = nullptr;
    EXPECT_EQ(tessel_movie_open(clip, nullptr, &movie), TESSEL_OK) << tessel_error_text();
    return Movie(movie);
}

/// A frame in planar 10-bit 4:2:2.
std::vector<Bytes> FrameOf(tessel_clip* clip, std::int64_t number)
{
    tessel_picture picture{};
    picture.size = sizeof picture;
    EXPECT_EQ(tessel_describe_picture(clip, TESSEL_LAYOUT_YUV422P10, &picture), TESSEL_OK)
        << tessel_error_text();
    std::vector<Bytes> planes;
    std::vector<void*> pointers;
    std::vector<std::ptrdiff_t> strides;
    for (int plane = 0; plane < picture.plane_count; ++plane) {
        planes.emplace_back(picture.row_bytes[plane] * static_cast<std::size_t>(picture.plane_rows[plane]));
        strides.push_back(static_cast<std::ptrdiff_t>(picture.row_bytes[plane]));
    }
    for (Bytes& plane : planes) {
        pointers.push_back(plane.data());
    }
    EXPECT_EQ(tessel_frame(clip, number, TESSEL_LAYOUT_YUV422P10, pointers.data(), strides.data()), TESSEL_OK)
        << tessel_error_text();
    return planes;
}

std::vector<float> SamplesOf(tessel_clip* clip, std::int64_t start, std::size_t count)
{
    std::vector<float> left(count);
    std::vector<float> right(count);
    const std::vector<float*> channels{left.data(), right.data()};
    EXPECT_EQ(tessel_samples(clip, start, count, channels.data(), channels.size()), TESSEL_OK)
        << tessel_error_text();
    return left;
}

Bytes Read(tessel_movie* movie, std::int64_t offset, std::size_t count)
{
    Bytes bytes(count);
    std::size_t got = 0;
    EXPECT_EQ(tessel_movie_read(movie, offset, bytes.data(), count, &got), TESSEL_OK) << tessel_error_text();
    bytes.resize(got);
    return bytes;
}

Bytes Whole(tessel_movie* movie)
{
    return Read(movie, 0, static_cast<std::size_t>(tessel_movie_size(movie)));
}

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
    tessel_clip* opened = nullptr;
    ASSERT_EQ(tessel_open_file(file.c_str(), nullptr, &opened), TESSEL_OK) << tessel_error_text();
    const Clip clip(opened);
    fs::remove(file);
    const Clip other = OpenText(TextOf(16));
    EXPECT_EQ(FrameOf(clip.get(), 7), FrameOf(other.get(), 7));
    EXPECT_EQ(SamplesOf(clip.get(), 3, 100), SamplesOf(other.get(), 3, 100));
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

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which know one set of libraries
/// A function of a library that was loaded by hand.
template <class Function>
Function* FunctionOf(void* library, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(library, name));
}

TEST(TwoLibraries, LiveInOneProcessWithAPlugInEach)
{
    const std::string text = TextOf(16);
    const Clip mine = OpenText(text);
    // In a namespace of its own, with its own copy of each library that it needs.
    void* library = dlmopen(LM_ID_NEWLM, TEST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto* const open = FunctionOf<decltype(tessel_open_text)>(library, "tessel_open_text");
    auto* const openMovie = FunctionOf<decltype(tessel_movie_open)>(library, "tessel_movie_open");
    auto* const read = FunctionOf<decltype(tessel_movie_read)>(library, "tessel_movie_read");
    auto* const closeMovie = FunctionOf<decltype(tessel_movie_close)>(library, "tessel_movie_close");
    auto* const close = FunctionOf<decltype(tessel_close)>(library, "tessel_close");
    auto* const errorText = FunctionOf<decltype(tessel_error_text)>(library, "tessel_error_text");
    ASSERT_NE(open, &tessel_open_text);

    const std::string before = tessel_error_text();
    tessel_clip* clip = nullptr;
    EXPECT_EQ(open("{", 1, nullptr, &clip), TESSEL_NOT_OPENED);
    EXPECT_STRNE(errorText(), "");
    EXPECT_EQ(tessel_error_text(), before); // the libraries share no state
    ASSERT_EQ(open(text.data(), text.size(), nullptr, &clip), TESSEL_OK) << errorText();
    tessel_movie* movie = nullptr;
    ASSERT_EQ(openMovie(clip, nullptr, &movie), TESSEL_OK) << errorText();
    const Bytes whole = Whole(OpenMovie(mine.get()).get());
    Bytes other(whole.size());
    std::size_t got = 0;
    EXPECT_EQ(read(movie, 0, other.data(), other.size(), &got), TESSEL_OK) << errorText();
    EXPECT_EQ(other, whole);
    closeMovie(movie);
    close(clip);
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(FrameOf(mine.get(), 3), FrameOf(OpenText(text).get(), 3));
}
#endif

} // namespace
