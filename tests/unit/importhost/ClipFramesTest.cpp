#include "ClipFixture.h"

#include <kestrel/qelcore/FourCharacterCode.h>

#include <cstring>
#include <optional>
#include <thread>
#include <vector>

namespace {

using namespace importhosttests;

TEST_F(ClipTest, FramesAreUprightInBothRowOrders)
{
    // Interlaced: rows 0, 2, 4 ... in memory are red, the others green.
    const Document document = Document().Set("mFieldType", "1");
    const importhost::Frame straight = Open(document).RenderFrame(0);
    EXPECT_GT(straight.RowBytes(), 0);
    const std::uint8_t red[] = {0, 0, 255, 255};
    EXPECT_EQ(std::memcmp(straight.Row(0), red, sizeof red), 0);
    EXPECT_EQ(straight.Row(1), straight.Row(0) + straight.RowBytes());

    Document floats = document;
    const importhost::Frame flipped =
        Open(floats.Set("mPixelFormat", std::to_string(qelcore::FourBytesCode("BGra")))).RenderFrame(0);
    EXPECT_LT(flipped.RowBytes(), 0);
    const float floatRed[] = {0, 0, 1, 1};
    EXPECT_EQ(std::memcmp(flipped.Row(31), floatRed, sizeof floatRed), 0) << "memory's first row shows last";
    EXPECT_EQ(flipped.Row(31), flipped.Row(0) + 31 * flipped.RowBytes());
}

TEST_F(ClipTest, AFrameIsPaintedIntoTheCallersMemoryAndNothingBetweenItsRows)
{
    // Two fields of height / 2 rows leave the last row alone: it is zero there too.
    const Document document = Document().Set("mFieldType", "1").Set("mFrameHeight", "33");
    const Clip clip = Open(document);
    const importhost::Frame expected = clip.RenderFrame(5);
    constexpr std::ptrdiff_t kRowBytes = 64 * 4 + 5;
    std::vector<std::byte> memory(33 * kRowBytes + 1, std::byte{0xCC});
    const importhost::FrameDestination destination{expected.Format(), 64, 33, memory.data() + 1, kRowBytes};
    const importhost::Frame painted = clip.RenderFrame(5, &destination);
    ASSERT_EQ(painted.Row(0), memory.data() + 1);
    EXPECT_EQ(painted.RowBytes(), kRowBytes);
    for (int row = 0; row < 33; ++row) {
        EXPECT_EQ(std::memcmp(painted.Row(row), expected.Row(row), 256), 0) << row;
        for (int behind = 256; behind < kRowBytes; ++behind) {
            ASSERT_EQ(painted.Row(row)[behind], std::byte{0xCC}) << row;
        }
    }
}

TEST_F(ClipTest, AFrameThatDoesNotFitTheCallersMemoryHasItsOwn)
{
    std::vector<std::byte> memory(64 * 32 * 16, std::byte{0xCC});
    const auto isUntouchedBy = [&](const Clip& clip, importhost::FrameDestination destination) {
        destination.top = memory.data();
        const importhost::Frame frame = clip.RenderFrame(0, &destination);
        return frame.Row(0) < memory.data() || frame.Row(0) >= memory.data() + memory.size();
    };
    const Clip clip = Open(Document());
    const auto format = clip.RenderFrame(0).Format();
    EXPECT_FALSE(isUntouchedBy(clip, {format, 64, 32, nullptr, 256})) << "it fits";
    memory.assign(memory.size(), std::byte{0xCC});
    EXPECT_TRUE(isUntouchedBy(clip, {format, 63, 32, nullptr, 256}));
    EXPECT_TRUE(isUntouchedBy(clip, {format, 64, 31, nullptr, 256}));
    EXPECT_TRUE(isUntouchedBy(clip, {format, 64, 32, nullptr, 255}));
    EXPECT_TRUE(isUntouchedBy(clip, {format, 64, 32, nullptr, -256}));
    EXPECT_TRUE(isUntouchedBy(clip, {BR::PixelFormat::ARGB_4444_8u, 64, 32, nullptr, 256}));
    // Stored bottom row first, so the top row cannot come first.
    EXPECT_TRUE(
        isUntouchedBy(Open(Document().Set("mPixelFormat", std::to_string(qelcore::FourBytesCode("BGra")))),
                      {BR::PixelFormat::BGRA_4444_32f, 64, 32, nullptr, 1024}));
    for (const std::byte byte : memory) {
        ASSERT_EQ(byte, std::byte{0xCC});
    }
}

TEST_F(ClipTest, AFrameOutlivesItsClip)
{
    importhost::Frame frame;
    {
        frame = Open(Document()).RenderFrame(3);
    }
    EXPECT_EQ(frame.Width(), 64);
    EXPECT_EQ(frame.Row(31)[2], std::byte{255});
}

TEST_F(ClipTest, RowsThePlugInLeavesAloneAreZeroOrPoison)
{
    // Two fields of height / 2 rows leave the last of 201 rows alone.
    const Document document =
        Document().Set("mFieldType", "1").Set("mFrameWidth", "200").Set("mFrameHeight", "201");
    const Clip zeroed = Open(document);
    for (int i = 0; i < 4; ++i) {
        const auto frame = zeroed.RenderFrame(i);
        for (int byte = 0; byte < 800; ++byte) {
            ASSERT_EQ(frame.Row(200)[byte], std::byte{0}) << "frame " << i;
        }
    }
    const Clip poisoned = Open(document, importhost::FrameFilling::Poison);
    EXPECT_EQ(poisoned.RenderFrame(0).Row(200)[5], poisoned.RenderFrame(1).Row(200)[700]);
    EXPECT_NE(poisoned.RenderFrame(0).Row(200)[5], std::byte{0});
}

TEST_F(ClipTest, FramesThatCannotBeMadeSayWhy)
{
    EXPECT_EQ(FrameFailure(Open(Document().Set("mPixelFormat", "1"))),
              "clip.tessel: frame 0: the plug-in asked for a frame in a pixel format that cannot be painted");
    EXPECT_EQ(
        FrameFailure(Open(Document().Set("mFrameWidth", "100001"))),
        "clip.tessel: frame 0: a frame of 100001x32 cannot be made: width and height must be 1 to 100000");
    EXPECT_NE(FrameFailure(Open(Document().Set("mFrameHeight", "-5"))).find("64x-5"), std::string::npos);
    EXPECT_NE(
        FrameFailure(Open(Document().Set("mFrameWidth", "90000").Set("mFrameHeight", "90000"))).find("2 GiB"),
        std::string::npos);
    EXPECT_EQ(FrameFailure(Open(Document().Set("mRenderFormat", "2"))),
              "clip.tessel: frame 0: the plug-in failed (result 5)");
}

TEST_F(ClipTest, TheProgramExplainsFailuresWhereItCan)
{
    Clip clip = Open(Document().Set("mPixelFormat", "1"));
    importhost::ClipFailure seen;
    clip.Learn({.explain = [&seen](const importhost::ClipFailure& failure) {
        seen = failure;
        return std::optional<std::string>("the program knows");
    }});
    EXPECT_EQ(FrameFailure(clip), "clip.tessel: frame 0: the program knows");
    EXPECT_EQ(seen.cause, importhost::FailureCause::FrameRefused);
    EXPECT_EQ(seen.refusal, importhost::FrameRefusal::FormatCannotBePainted);
    clip.Learn({.explain = [](const importhost::ClipFailure&) { return std::optional<std::string>(); }});
    EXPECT_NE(FrameFailure(clip).find("cannot be painted"), std::string::npos);
}

TEST_F(ClipTest, AFrameOfAnotherSizeThanDescribedIsRefused)
{
    const auto importer =
        Importer::Load(TestImporter("WrongWidth"), importhost::TestingPlugins::AsDebugDatabaseSays);
    const Clip clip = Clip::Open(importer, mFolder.Write("clip.plain", "64 32 10"));
    EXPECT_EQ(FrameFailure(clip),
              "clip.plain: frame 0: the plug-in made a frame of 64x32, but it described the "
              "clip as 512x32");
}

TEST_F(ClipTest, AHandleThatIsNoFrameOfTheRequestIsRefused)
{
    const auto importer =
        Importer::Load(TestImporter("WrongHandle"), importhost::TestingPlugins::AsDebugDatabaseSays);
    const Clip clip = Clip::Open(importer, mFolder.Write("clip.plain", "64 32 10"));
    EXPECT_EQ(FrameFailure(clip),
              "clip.plain: frame 0: the plug-in gave a frame that this host did not make for "
              "the request");
}

TEST_F(ClipTest, ManyThreadsRenderWhatOneRenders)
{
    const Document document = Document()
                                  .Set("mRenderFormat", "1")
                                  .Set("mFrameWidth", "320")
                                  .Set("mFrameHeight", "240")
                                  .Set("mDrawFrameFieldNumber", "true");
    const Clip reference = Open(document);
    std::vector<importhost::Frame> expected;
    for (int i = 0; i < 16; ++i) {
        expected.push_back(reference.RenderFrame(i));
    }
    const Clip clip = Open(document);
    std::vector<int> differing(4, 0);
    std::vector<std::thread> threads;
    for (int& differences : differing) {
        threads.emplace_back([&] {
            for (int i = 0; i < 16; ++i) {
                const auto frame = clip.RenderFrame(i);
                for (int row = 0; row < 240; ++row) {
                    differences += std::memcmp(frame.Row(row), expected[static_cast<std::size_t>(i)].Row(row),
                                               320 * 4) != 0;
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(differing, std::vector<int>(4, 0));
}

} // namespace
