#include "DocumentFixture.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

using namespace tessel::document;

TEST_F(DocumentTest, FactsAreWhatThePlugInReportsAndWhatTheDocumentAdds)
{
    const OpenedClip opened = Open(Document()
                                       .Set("mPixelFormat", CodeText("v210"))
                                       .Set("mNumChannels", "6")
                                       .Set("mKsAudioChannelType", "3"));
    EXPECT_EQ(opened.facts.width, 64);
    EXPECT_EQ(opened.facts.channelCount, 6);
    EXPECT_EQ(opened.facts.channelType, 3);
    EXPECT_EQ(opened.facts.pixelFormat, BR::PixelFormat::V210_422_10u_601);
    EXPECT_EQ(opened.facts.frameFormat, BR::PixelFormat::Unknown) << "no frame was asked";
    EXPECT_EQ(opened.warning, "");
    EXPECT_FALSE(opened.isDefault);
}

TEST_F(DocumentTest, FilesOfOtherImportersAreNotLookedInto)
{
    const auto plain =
        importhost::Importer::Load(std::string(TEST_IMPORTERS) + "/PlainImporter/PlainImporter.so",
                                   importhost::TestingPlugins::AsDebugDatabaseSays);
    const OpenedClip opened = OpenClip(plain, mFolder.Write("clip.plain", "64 32 10"));
    EXPECT_EQ(opened.facts.width, 64);
    EXPECT_EQ(opened.facts.channelType, 0);
    EXPECT_EQ(opened.facts.pixelFormatCode, 0U);
    EXPECT_EQ(opened.facts.pixelFormat, BR::PixelFormat::Unknown);
}

TEST_F(DocumentTest, FactsTooLongForThePlugInsBufferAreReadFromTheDocument)
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
                                  .Set("mPixelFormat", CodeText("uyv7"))
                                  .Set("mKsAudioChannelType", "3");
    for (const bool wrapped : {false, true}) {
        const std::string text =
            wrapped ? "{\"SerializerWrappedObject\": " + document.Text() + "}" : document.Text();
        const OpenedClip opened = OpenClip(sImporter, mFolder.Write("long.tessel", text));
        EXPECT_FALSE(opened.clip.AskSettingsText());
        EXPECT_EQ(opened.facts.pixelFormat, BR::PixelFormat::UYVY_422_8u_709) << "wrapped: " << wrapped;
        EXPECT_EQ(opened.facts.channelType, 3);
    }
}

TEST_F(DocumentTest, RatesBesideEveryFractionCountTheirOwnFrames)
{
    for (const std::int64_t ticks : {8467200001, 8467199999, 10160640001, 4233600001}) {
        const OpenedClip opened =
            Open(Document()
                     .Set("mRenderFormat", "1")
                     .Set("mPixelFormat", CodeText("BGra"))
                     .Set("mTopGradiantColorEnd",
                          R"({"mAlphaPart": 0, "mRedPart": 0, "mGreenPart": 0, "mBluePart": 0})")
                     .Set("mVideoFrameRate", "{\"ticksperframe\": " + std::to_string(ticks) + "}"));
        EXPECT_EQ(opened.facts.rate.ticksPerFrame, ticks);
        // The gradient changes with every frame, so two equal frames show a wrong time.
        std::vector<std::vector<std::byte>> rows;
        for (std::int64_t frame = 0; frame < 5; ++frame) {
            const importhost::Frame picture = opened.clip.RenderFrame(frame);
            const std::byte* const row = picture.Row(31); // stored bottom row first
            rows.emplace_back(row, row + 16);
        }
        EXPECT_EQ(std::adjacent_find(rows.begin(), rows.end()), rows.end()) << ticks;
    }
}

TEST_F(DocumentTest, MalformedDocumentsAreRefusedWithKeyOrPlace)
{
    EXPECT_EQ(Refusal(Document().Set("mFrameWidth", "720.0").Text()), "\"mFrameWidth\": expected an integer");
    const std::string missing = Refusal(Document().Remove("mPixelFormat").Text());
    EXPECT_NE(missing.find("\"mPixelFormat\""), std::string::npos) << missing;
    const std::string broken = Refusal("{\n\"mFrameWidth\": }");
    EXPECT_TRUE(broken.starts_with("line 2, column 16")) << broken;
    EXPECT_NE(Refusal("  []").find("expected a JSON object"), std::string::npos);
    EXPECT_NE(Refusal("42").find("expected a JSON object"), std::string::npos);
}

TEST_F(DocumentTest, MalformedDocumentsOpenAsTheDefaultClipWhenAllowed)
{
    for (const char* text : {"", "{", "[]", "{}"}) {
        const OpenedClip opened =
            OpenClip(sImporter, mFolder.Write("clip.tessel", text), {.allowDefault = true});
        EXPECT_EQ(opened.facts.width, 720) << text;
        EXPECT_EQ(opened.facts.frameCount, 1800) << text;
        EXPECT_EQ(opened.warning.empty(), std::string(text) == "[]") << text;
    }
}

TEST_F(DocumentTest, AnEmptyDocumentIsCalledEmpty)
{
    EXPECT_EQ(Refusal(""), "is empty, a JSON document with a clip's settings was expected");
}

TEST_F(DocumentTest, TheDefaultClipsOwnDocumentIsNoBrokenOne)
{
    const OpenedClip fallback = OpenClip(sImporter, mFolder.Write("clip.tessel", "[]"), {.allowDefault = true});
    const auto text = fallback.clip.AskSettingsText();
    ASSERT_TRUE(text);
    EXPECT_EQ(Refusal(*text), "");
    EXPECT_EQ(Refusal("[]"), "expected a JSON object with a clip's settings");
}

} // namespace
