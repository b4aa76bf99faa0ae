#include "ClipFixture.h"

#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <cerrno>
#include <optional>
#include <system_error>

namespace {

using namespace importhosttests;

TEST_F(ClipTest, TheDescriptionIsWhatSelectorsReport)
{
    const Clip clip =
        Open(Document().Set("mFieldType", "2").Set("mSampleRate", "44100").Set("mNumChannels", "6"));
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
    EXPECT_EQ(description.colorSpaceName, "Rec. 709");
    EXPECT_EQ(description.colorCodes.matrix, 1);
    EXPECT_TRUE(clip.Messages().empty());
}

TEST_F(ClipTest, FieldTypesAbove2CountAsUpperFirst)
{
    EXPECT_EQ(Open(Document().Set("mFieldType", "7")).Description().Order(),
              importhost::FieldOrder::UpperFirst);
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

TEST_F(ClipTest, TheProgramsTicksPerFrameAreTakenWhereTheDescribedRateIsTheirRounding)
{
    // No fraction of 32-bit numbers is exactly 254016000000 / 8467200001; the nearest is 30/1.
    Clip clip = Open(Document().Set("mVideoFrameRate", R"({"ticksperframe": 8467200001})"));
    EXPECT_EQ(clip.Rate().ticksPerFrame, 8467200000);
    clip.Learn({.ticksPerFrame = 8467200001});
    EXPECT_EQ(clip.Rate().ticksPerFrame, 8467200001);
    clip.Learn({.ticksPerFrame = 10160640000}); // 25 a second
    EXPECT_EQ(clip.Rate().ticksPerFrame, 8467200000);
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
    EXPECT_EQ(Refusal("a\xFF.tessel"),
              "a\xEF\xBF\xBD.tessel: the file name is not UTF-8, which a clip's name must be");
}

TEST_F(ClipTest, ExtensionsAreTakenInAnyCase)
{
    EXPECT_EQ(Refusal(mFolder.Write("CLIP.Tessel", Document().Text())), "");
}

TEST_F(ClipTest, WhatThePlugInLogsWhileAClipOpensIsKeptAndNotPrinted)
{
    testing::internal::CaptureStderr();
    const Clip clip = Clip::Open(sImporter, mFolder.Write("a.tessel", "{"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(clip.Messages().size(), 1U);
}

TEST_F(ClipTest, ARefusalEndsWithWhatThePlugInLoggedLast)
{
    const auto importer = Importer::Load(FLAT_PLUGIN, importhost::TestingPlugins::AsDebugDatabaseSays);
    // An ordinary file by its type, of which nothing can be read: page 0 of a process is never mapped.
    std::filesystem::create_symlink("/proc/self/mem", mFolder.Path() / "clip.flat");
    const std::string line =
        LineOf([&] { static_cast<void>(Clip::Open(importer, mFolder.Path() / "clip.flat")); });
    EXPECT_EQ(line.find("clip.flat: the plug-in cannot open it (result 5): "), 0U) << line;
    EXPECT_NE(line.find(std::generic_category().message(EIO)), std::string::npos) << line;
}

TEST_F(ClipTest, TheSettingsTextIsHandedOnAsThePlugInGivesIt)
{
    const Clip clip = Open(Document());
    testing::internal::CaptureStderr();
    const auto text = clip.AskSettingsText();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    ASSERT_TRUE(text);
    EXPECT_EQ(text->front(), '{');
    EXPECT_EQ(text->back(), '}');
    EXPECT_NE(text->find("\"mFrameWidth\":64"), std::string::npos) << *text;
}

TEST_F(ClipTest, SettingsThatDoNotFitTheBufferAreNoText)
{
    // The plug-in's buffer has 10240 bytes; its path alone is longer.
    const std::string path = '"' + std::string(11000, 'a') + '"';
    EXPECT_EQ(Open(Document().Set("mSwatchColorsFilePath", path)).AskSettingsText(), std::nullopt);
}

TEST_F(ClipTest, AnImporterWithoutSettingsAndColorsIsServed)
{
    const auto importer =
        Importer::Load(TestImporter("PlainImporter"), importhost::TestingPlugins::AsDebugDatabaseSays);
    const Clip clip = Clip::Open(importer, mFolder.Write("clip.plain", "64 32 10"));
    EXPECT_EQ(clip.AskSettingsText(), std::nullopt);
    EXPECT_EQ(clip.Description().colorSpaceName, "Unspecified");
    EXPECT_EQ(clip.Description().frameCount, 10);
    EXPECT_EQ(clip.RenderFrame(0).Format(), BR::PixelFormat::UYVY_422_8u_709);
}

TEST_F(ClipTest, CodesThatAnImporterCannotTellAreUnspecified)
{
    const auto importer =
        Importer::Load(TestImporter("ServesNoCodes"), importhost::TestingPlugins::AsDebugDatabaseSays);
    const Clip clip = Clip::Open(importer, mFolder.Write("clip.plain", "64 32 10"));
    // 0 would be a reserved code for the primaries and R'G'B' for the matrix.
    EXPECT_EQ(clip.Description().colorCodes.primaries, 2);
    EXPECT_EQ(clip.Description().colorCodes.transfer, 2);
    EXPECT_EQ(clip.Description().colorCodes.matrix, 2);
    EXPECT_EQ(clip.Description().colorSpaceName, "Unspecified");
}

} // namespace
