/// Two libraries in one process, as where a program and a plug-in in it each bring one.

#include "ApiClips.h"

#include <dlfcn.h>

#include <thread>

namespace {

using namespace apitests;

/// The functions of a library that was loaded by hand.
struct Functions {
    explicit Functions(void* library)
        : open(Find<decltype(tessel_open_text)>(library, "tessel_open_text")),
          openMovie(Find<decltype(tessel_movie_open)>(library, "tessel_movie_open")),
          read(Find<decltype(tessel_movie_read)>(library, "tessel_movie_read")),
          closeMovie(Find<decltype(tessel_movie_close)>(library, "tessel_movie_close")),
          close(Find<decltype(tessel_close)>(library, "tessel_close")),
          errorText(Find<decltype(tessel_error_text)>(library, "tessel_error_text")),
          version(Find<decltype(tessel_version)>(library, "tessel_version"))
    {
    }

    template <class Function>
    static Function* Find(void* library, const char* name)
    {
        return reinterpret_cast<Function*>(dlsym(library, name));
    }

    decltype(tessel_open_text)* open;
    decltype(tessel_movie_open)* openMovie;
    decltype(tessel_movie_read)* read;
    decltype(tessel_movie_close)* closeMovie;
    decltype(tessel_close)* close;
    decltype(tessel_error_text)* errorText;
    decltype(tessel_version)* version;
};

/// Opens a clip and a movie with the other library and compares the movie with that of the linked one.
void ExpectTheSameMovie(const Functions& other, const std::string& text)
{
    tessel_clip* clip = nullptr;
    ASSERT_EQ(other.open(text.data(), text.size(), nullptr, &clip), TESSEL_OK) << other.errorText();
    tessel_movie* movie = nullptr;
    ASSERT_EQ(other.openMovie(clip, nullptr, &movie), TESSEL_OK) << other.errorText();
    const Bytes whole = Whole(OpenMovie(OpenText(text).get()).get());
    Bytes bytes(whole.size());
    std::size_t got = 0;
    EXPECT_EQ(other.read(movie, 0, bytes.data(), bytes.size(), &got), TESSEL_OK) << other.errorText();
    EXPECT_EQ(got, whole.size());
    EXPECT_TRUE(bytes == whole);
    other.closeMovie(movie);
    other.close(clip);
}

/// Has the other library fail; the linked one must not notice.
void ExpectSeparateErrors(const Functions& other)
{
    const std::string before = tessel_error_text();
    tessel_clip* clip = nullptr;
    EXPECT_EQ(other.open("{", 1, nullptr, &clip), TESSEL_NOT_OPENED);
    EXPECT_STRNE(other.errorText(), "");
    EXPECT_EQ(tessel_error_text(), before);
}

TEST(TwoVersions, LiveInOneProcessAndShareOneHost)
{
    const std::string text = TextOf(16);
    Clip mine = OpenText(text);
    const std::vector<Bytes> expected = FrameOf(mine.get(), 3);
    // As a program loads a plug-in that is linked with the next version.
    void* library = dlopen(TEST_NEXT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const Functions next(library);
    EXPECT_STREQ(next.version(), "99.0.0");
    EXPECT_STRNE(tessel_version(), next.version());
    ExpectSeparateErrors(next);
    ExpectTheSameMovie(next, text);

    // Either may load the importer while the other unloads it.
    std::thread other([&] {
        for (int turn = 0; turn < 20; ++turn) {
            tessel_clip* clip = nullptr;
            EXPECT_EQ(next.open(text.data(), text.size(), nullptr, &clip), TESSEL_OK) << next.errorText();
            next.close(clip);
        }
    });
    for (int turn = 0; turn < 20; ++turn) {
        mine.reset();
        mine = OpenText(text);
        EXPECT_EQ(FrameOf(mine.get(), 3), expected);
    }
    other.join();
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(FrameOf(mine.get(), 3), expected);
    EXPECT_EQ(FrameOf(OpenText(text).get(), 3), expected);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which know one copy of each library
TEST(TwoLibraries, LiveInOneProcessWithAHostAndAPlugInEach)
{
    const std::string text = TextOf(16);
    const Clip mine = OpenText(text);
    // In another namespace of the loader, with a second copy of each library that it needs.
    void* library = dlmopen(LM_ID_NEWLM, TEST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const Functions second(library);
    ASSERT_NE(second.open, &tessel_open_text);
    ExpectSeparateErrors(second);
    ExpectTheSameMovie(second, text);
    EXPECT_EQ(dlclose(library), 0);
    EXPECT_EQ(FrameOf(mine.get(), 3), FrameOf(OpenText(text).get(), 3));
}
#endif

} // namespace
