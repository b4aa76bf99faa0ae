#include "ClipFolder.h"

#include <kestrel/importhost/Clip.h>
#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>
#include <vector>

namespace {

using importhost::Clip;
using importhost::HostError;
using importhost::Importer;
using importhost::OpenOptions;
using namespace importhosttests;

class ClipTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        sImporter = Importer::Load(TEST_PLUGIN, importhost::TestingPlugins::Allowed);
    }
    static void TearDownTestSuite() { sImporter.reset(); }

    Clip Open(const Document& document, const OpenOptions& options = {})
    {
        return Clip::Open(sImporter, mFolder.Write("clip.tessel", document.Text()), options);
    }

    /// The line that refuses a file; empty where it opens. The folder's name is cut off.
    std::string Refusal(const std::filesystem::path& file, const OpenOptions& options = {})
    {
        try {
            (void)Clip::Open(sImporter, file, options);
            return {};
        } catch (const HostError& error) {
            const std::string line = error.what();
            const std::string folder = mFolder.Path().string() + "/";
            EXPECT_EQ(line.find('\n'), std::string::npos) << line;
            return line.starts_with(folder) ? line.substr(folder.size()) : line;
        }
    }

    std::string FrameRefusal(const Document& document)
    {
        const Clip clip = Open(document);
        try {
            (void)clip.RenderFrame(0);
            return {};
        } catch (const HostError& error) {
            return error.what();
        }
    }

    static std::shared_ptr<Importer> sImporter;
    ClipFolder mFolder;
};

std::shared_ptr<Importer> ClipTest::sImporter;

std::uint32_t CodeOf(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) {
        code |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << (8 * i);
    }
    return code;
}

TEST_F(ClipTest, TheDescriptionIsTheDocuments)
{
    const Clip clip = Open(Document()
                               .Set("mPixelFormat", std::to_string(CodeOf("v210")))
                               .Set("mFieldType", "2")
                               .Set("mSampleRate", "44100")
                               .Set("mNumChannels", "6")
                               .Set("mKsAudioChannelType", "3"));
    const auto& description = clip.Description();
    EXPECT_EQ(description.width, 64);
    EXPECT_EQ(description.height, 32);
    EXPECT_EQ(description.pixelAspect, qelmediatypes::kPixelAspectRatio_DVNTSC);
    EXPECT_EQ(description.Order(), importhost::FieldOrder::LowerFirst);
    EXPECT_EQ(description.timeScale, 30000);
    EXPECT_EQ(description.sampleSize, 1001);
    EXPECT_EQ(description.rate.ticksPerFrame, 8475667200);
    EXPECT_EQ(description.frameCount, 59); // 2 s × 29.97 = 59.94
    EXPECT_EQ(description.sampleRate, 44100.0F);
    EXPECT_EQ(description.channelCount, 6);
    EXPECT_EQ(description.channelType, 3);
    EXPECT_EQ(description.pixelFormat, BR::PixelFormat::V210_422_10u_601);
    EXPECT_EQ(description.colorSpaceName, "Rec. 709");
    EXPECT_EQ(description.colorCodes.matrix, 1);
    EXPECT_TRUE(clip.SettingsText());
    EXPECT_EQ(clip.Warning(), "");
}

TEST_F(ClipTest, FieldTypesAbove2CountAsUpperFirst)
{
    EXPECT_EQ(Open(Document().Set("mFieldType", "7")).Description().Order(),
              importhost::FieldOrder::UpperFirst);
}

TEST_F(ClipTest, SettingsTooLongForTheBufferAreReadFromTheFile)
{
    std::string list = "[1";
    for (int i = 0; i < 6000; ++i) {
        list += ",1";
    }
    const std::string coordinates =
        R"({"colorSwatches": {"xCoordinates": )" + list +
        R"(], "yCoordinates": []}, "legalRangeGradient": {"xCoordinates": [], "yCoordinates": []},)"
        R"( "fullRangeGradient": {"xCoordinates": [], "yCoordinates": []}})";
    const Document document = Document()
                                  .Set("mSwatchCoordinates", coordinates)
                                  .Set("mPixelFormat", std::to_string(CodeOf("uyv7")))
                                  .Set("mKsAudioChannelType", "3");
    for (const bool wrapped : {false, true}) {
        const std::string text =
            wrapped ? "{\"SerializerWrappedObject\": " + document.Text() + "}" : document.Text();
        const Clip clip = Clip::Open(sImporter, mFolder.Write("long.tessel", text), {});
        EXPECT_FALSE(clip.SettingsText());
        EXPECT_EQ(clip.Description().pixelFormat, BR::PixelFormat::UYVY_422_8u_709) << "wrapped: " << wrapped;
        EXPECT_EQ(clip.Description().channelType, 3);
    }
}

TEST_F(ClipTest, DurationsThatWrapTheirRecordAreStillCounted)
{
    // Ten hours in frames of 8475667201 ticks, a rate whose exact pair has a sample size of 64697592:
    // more than 2^31 units after 33 frames.
    const std::int64_t ticks = 36000 * qelmediatypes::kTicksPerSecond;
    const Clip clip = Open(Document()
                               .Set("mVideoDuration", "{\"ticks\": " + std::to_string(ticks) + "}")
                               .Set("mVideoFrameRate", R"({"ticksperframe": 8475667201})"));
    EXPECT_EQ(clip.Description().frameCount, ticks / 8475667201);
}

TEST_F(ClipTest, RatesBesideEveryFractionCountTheirOwnFrames)
{
    for (const std::int64_t ticks : {8467200001, 8467199999, 10160640001, 4233600001}) {
        const Clip clip =
            Open(Document()
                     .Set("mRenderFormat", "1")
                     .Set("mPixelFormat", std::to_string(CodeOf("BGra")))
                     .Set("mTopGradiantColorEnd",
                          R"({"mAlphaPart": 0, "mRedPart": 0, "mGreenPart": 0, "mBluePart": 0})")
                     .Set("mVideoFrameRate", "{\"ticksperframe\": " + std::to_string(ticks) + "}"));
        EXPECT_EQ(clip.Description().rate.ticksPerFrame, ticks);
        // The gradient moves with every frame: two alike are one that came too early.
        std::vector<std::vector<std::byte>> rows;
        for (std::int64_t frame = 0; frame < 5; ++frame) {
            const importhost::Frame picture = clip.RenderFrame(frame);
            const std::byte* const row = picture.Row(31); // stored bottom row first
            rows.emplace_back(row, row + 16);
        }
        EXPECT_EQ(std::adjacent_find(rows.begin(), rows.end()), rows.end()) << ticks;
    }
}

TEST_F(ClipTest, ARateThatIsNoneMakesAClipWithoutFramesAndNothingTraps)
{
    for (const char* rate : {"0", "-1", "9223372036854775807", "-9223372036854775808", "1"}) {
        const Clip clip =
            Open(Document().Set("mVideoFrameRate", std::string("{\"ticksperframe\": ") + rate + "}"));
        EXPECT_FALSE(clip.Description().rate.HasFrames()) << rate;
        EXPECT_EQ(clip.Description().frameCount, 0) << rate;
        EXPECT_TRUE(clip.RenderFrame(0)) << rate;
    }
}

TEST_F(ClipTest, ANegativeDurationHasNoFrames)
{
    EXPECT_EQ(Open(Document().Set("mVideoDuration", R"({"ticks": -508032000000})")).Description().frameCount,
              0);
}

TEST_F(ClipTest, FilesThatAreNoClipAreRefusedWithTheReason)
{
    EXPECT_EQ(Refusal(mFolder.Path() / "gone.tessel"), "gone.tessel: no such file");
    std::filesystem::create_directory(mFolder.Path() / "folder.tessel");
    EXPECT_EQ(Refusal(mFolder.Path() / "folder.tessel"),
              "folder.tessel: is a directory, a clip's file was expected");
    EXPECT_EQ(Refusal(mFolder.Write("clip.mov", "x")),
              "clip.mov: unknown file extension .mov, .tessel was expected");
    EXPECT_EQ(Refusal(mFolder.Write("clip", "x")), "clip: no file extension, .tessel was expected");
    EXPECT_EQ(Refusal(mFolder.Write("empty.tessel", "")),
              "empty.tessel: is empty, a JSON document with a clip's settings was expected");
    EXPECT_EQ(Refusal("a\xFF.tessel"),
              "a\xEF\xBF\xBD.tessel: the file name is not UTF-8, which a clip's name must be");
}

TEST_F(ClipTest, ExtensionsAreTakenInAnyCase)
{
    EXPECT_EQ(Refusal(mFolder.Write("CLIP.Tessel", Document().Text())), "");
}

TEST_F(ClipTest, MalformedDocumentsAreRefusedWithKeyOrPlace)
{
    EXPECT_EQ(Refusal(mFolder.Write("a.tessel", Document().Set("mFrameWidth", "720.0").Text())),
              "a.tessel: \"mFrameWidth\": expected an integer");
    const std::string missing = Refusal(mFolder.Write("a.tessel", Document().Remove("mPixelFormat").Text()));
    EXPECT_TRUE(missing.starts_with("a.tessel: ")) << missing;
    EXPECT_NE(missing.find("\"mPixelFormat\""), std::string::npos) << missing;
    const std::string broken = Refusal(mFolder.Write("a.tessel", "{\n\"mFrameWidth\": }"));
    EXPECT_TRUE(broken.starts_with("a.tessel: line 2, column 16")) << broken;
    EXPECT_NE(Refusal(mFolder.Write("a.tessel", "  []")).find("expected a JSON object"), std::string::npos);
    EXPECT_NE(Refusal(mFolder.Write("a.tessel", "42")).find("expected a JSON object"), std::string::npos);
}

TEST_F(ClipTest, MalformedDocumentsOpenAsTheDefaultClipWhenAllowed)
{
    for (const char* text : {"", "{", "[]", "{}"}) {
        const Clip clip = Clip::Open(sImporter, mFolder.Write("a.tessel", text), {.allowDefault = true});
        EXPECT_EQ(clip.Description().width, 720) << text;
        EXPECT_EQ(clip.Description().frameCount, 1800) << text;
        EXPECT_EQ(clip.Warning().empty(), std::string(text) == "[]") << text;
    }
}

TEST_F(ClipTest, NothingThatThePlugInLogsWhileAClipOpensReachesStandardError)
{
    testing::internal::CaptureStderr();
    (void)Refusal(mFolder.Write("a.tessel", "{"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

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
        Open(floats.Set("mPixelFormat", std::to_string(CodeOf("BGra")))).RenderFrame(0);
    EXPECT_LT(flipped.RowBytes(), 0);
    const float floatRed[] = {0, 0, 1, 1};
    EXPECT_EQ(std::memcmp(flipped.Row(31), floatRed, sizeof floatRed), 0) << "memory's first row shows last";
    EXPECT_EQ(flipped.Row(31), flipped.Row(0) + 31 * flipped.RowBytes());
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
    const Clip poisoned = Open(document, {.filling = importhost::FrameFilling::Poison});
    EXPECT_EQ(poisoned.RenderFrame(0).Row(200)[5], poisoned.RenderFrame(1).Row(200)[700]);
    EXPECT_NE(poisoned.RenderFrame(0).Row(200)[5], std::byte{0});
}

TEST_F(ClipTest, FramesThatCannotBeMadeSayWhy)
{
    EXPECT_NE(FrameRefusal(Document().Set("mPixelFormat", "1")).find("\"mPixelFormat\": 1 is no pixel format"),
              std::string::npos);
    EXPECT_NE(FrameRefusal(Document().Set("mFrameWidth", "100001")).find("must be 1 to 100000"),
              std::string::npos);
    EXPECT_NE(FrameRefusal(Document().Set("mFrameHeight", "0")).find("must be 1 to 100000"), std::string::npos);
    EXPECT_NE(FrameRefusal(Document().Set("mFrameHeight", "-5")).find("64x-5"), std::string::npos);
    EXPECT_NE(FrameRefusal(Document().Set("mFrameWidth", "90000").Set("mFrameHeight", "90000")).find("2 GiB"),
              std::string::npos);
}

/// Three bands of one column and one row each, with the given rows and color counts.
std::string Coordinates(int first, int second, int third)
{
    const auto band = [](const char* name, int y) {
        return std::string("\"") + name + R"(": {"xCoordinates": [960], "yCoordinates": [)" +
               std::to_string(y) + "]}";
    };
    return "{" + band("colorSwatches", first) + "," + band("legalRangeGradient", second) + "," +
           band("fullRangeGradient", third) + "}";
}

TEST_F(ClipTest, BrokenSwatchRulesAreNamed)
{
    const std::string colors =
        R"({"colorSwatches": [1,0,0], "legalRangeGradient": [0,1,0], "fullRangeGradient": [0,0,1]})";
    const auto swatches = [&](const std::string& coordinates, const std::string& colorLists) {
        return Document()
            .Set("mPixelFormat", std::to_string(CodeOf("BGra")))
            .Set("mRenderFormat", "2")
            .Set("mFrameWidth", "1920")
            .Set("mFrameHeight", "1080")
            .Set("mSwatchCoordinates", coordinates)
            .Set("mSwatchColors", colorLists);
    };
    EXPECT_EQ(FrameRefusal(swatches(Coordinates(100, 500, 900), colors)), "");
    EXPECT_NE(FrameRefusal(swatches(Coordinates(100, 500, 900), colors).Set("mFrameWidth", "1280"))
                  .find("needs a frame of 1920x1080, this one is 1280x1080"),
              std::string::npos);
    EXPECT_NE(FrameRefusal(swatches(Coordinates(500, 500, 900), colors))
                  .find("\"colorSwatches\": its last row 500 must be above 500"),
              std::string::npos);
    EXPECT_NE(FrameRefusal(swatches(Coordinates(100, 950, 900), colors)).find("\"legalRangeGradient\""),
              std::string::npos);
    EXPECT_NE(FrameRefusal(swatches(Coordinates(100, 500, 1080), colors)).find("1080, the frame's height"),
              std::string::npos);
    EXPECT_NE(
        FrameRefusal(
            swatches(
                Coordinates(100, 500, 900),
                R"({"colorSwatches": [1,0,0], "legalRangeGradient": [0,1], "fullRangeGradient": [0,0,1]})"))
            .find("need 3 color parts, there are 2"),
        std::string::npos);
    EXPECT_NE(FrameRefusal(
                  Document().Set("mRenderFormat", "2").Set("mFrameWidth", "1920").Set("mFrameHeight", "1080"))
                  .find("no coordinates"),
              std::string::npos);
}

TEST_F(ClipTest, SoundFillsTheClipsChannelsAndZeroesTheOthers)
{
    const Clip clip = Open(Document());
    std::vector<std::vector<float>> buffers(4, std::vector<float>(480, 77.0F));
    std::vector<float*> channels;
    for (auto& buffer : buffers) {
        channels.push_back(buffer.data());
    }
    clip.RenderAudio(0, 480, channels);
    for (std::size_t i = 0; i < 480; ++i) {
        // 1000 Hz at 48000 Hz and 0.25.
        const double expected = 0.25 * std::sin(2.0 * 3.14159265358979 * static_cast<double>(i) / 48.0);
        ASSERT_NEAR(buffers[0][i], expected, 1e-6) << i;
        ASSERT_EQ(buffers[1][i], buffers[0][i]) << i;
        ASSERT_EQ(buffers[2][i], 0.0F) << i;
        ASSERT_EQ(buffers[3][i], 0.0F) << i;
    }
}

TEST_F(ClipTest, SixChannelPatternsHaveRoomOnAClipOfAnyChannelCount)
{
    for (const char* format : {"0", "1", "2", "3"}) {
        for (const char* count : {"0", "-3", "1", "2"}) {
            const Clip clip = Open(
                Document().Set("mToneFormat", "1").Set("mIdentifierFormat", format).Set("mNumChannels", count));
            std::vector<float> buffer(48000, 77.0F);
            std::vector<float> other(48000, 77.0F);
            const std::vector<float*> channels = {buffer.data(), other.data()};
            EXPECT_NO_THROW(clip.RenderAudio(-24000, 48000, channels)) << format << " " << count;
        }
    }
}

TEST_F(ClipTest, MoreThan64ChannelsAreRefused)
{
    const Clip clip = Open(Document().Set("mNumChannels", "65"));
    std::vector<float> buffer(16);
    const std::vector<float*> channels(65, buffer.data());
    EXPECT_THROW(clip.RenderAudio(0, 16, channels), HostError);
}

TEST_F(ClipTest, FewerBuffersThanChannelsAreRefused)
{
    const Clip clip = Open(Document());
    std::vector<float> buffer(16);
    const std::vector<float*> channels(1, buffer.data());
    EXPECT_THROW(clip.RenderAudio(0, 16, channels), HostError);
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
    for (std::size_t thread = 0; thread < differing.size(); ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 16; ++i) {
                const auto frame = clip.RenderFrame(i);
                for (int row = 0; row < 240; ++row) {
                    differing[thread] +=
                        std::memcmp(frame.Row(row), expected[static_cast<std::size_t>(i)].Row(row), 320 * 4) !=
                        0;
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
