#include "ClipModel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/encode/VideoEncoder.h>
#include <tessel/export/plan/DvProfiles.h>
#include <tessel/export/plan/OutputPlan.h>

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::exporting {
namespace {

using BR::PixelFormat;

VideoPlan Plan(const document::ClipFacts& clip, std::string_view container, std::string_view codec = {})
{
    return PlanVideo(clip, *ContainerNamed(container), VideoCodecNamed(codec));
}

VideoPlan Plan(PixelFormat format, std::string_view container, std::string_view codec = {})
{
    return Plan(DescriptionOf(format, 720, 480), container, codec);
}

struct LayoutRow {
    PixelFormat format;
    std::string_view container;
    std::string_view codec;
    PictureLayout layout;
};

TEST(VideoPlan, EachFormatKeepsItsSamplesWhereTheContainerCan)
{
    const LayoutRow kRows[] = {
        {PixelFormat::BGRA_4444_8u, "mkv", "ffv1", PictureLayout::Bgra},
        {PixelFormat::XRGB_4444_8u, "mkv", "ffv1", PictureLayout::Bgr0},
        {PixelFormat::VUYA_4444_8u, "mkv", "ffv1", PictureLayout::Yuva444p},
        {PixelFormat::VUYX_4444_32f_709, "mkv", "ffv1", PictureLayout::Yuv444p16},
        {PixelFormat::ARGB_4444_32f, "mkv", "ffv1", PictureLayout::Gbrap16},
        {PixelFormat::UYVY_422_8u_709, "mkv", "raw", PictureLayout::Uyvy},
        {PixelFormat::V210_422_10u_601, "mkv", "v210", PictureLayout::V210},
        {PixelFormat::V210_422_10u_601, "mov", "v210", PictureLayout::V210},
        {PixelFormat::YUYV_422_8u_601, "mov", "raw", PictureLayout::Yuyv},
        {PixelFormat::BGRA_4444_8u, "mov", "png", PictureLayout::Rgba},
        {PixelFormat::VUYA_4444_8u, "mov", "v408", PictureLayout::Yuva444p},
        {PixelFormat::VUYX_4444_8u, "mov", "v408", PictureLayout::Yuv444p},
        {PixelFormat::BGRA_4444_32f, "mov", "prores", PictureLayout::Yuva444p10},
        {PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, "mov", "raw", PictureLayout::Yuv420p},
        {PixelFormat::NTSCDV25, "mov", "dv", PictureLayout::Yuv411p},
        {PixelFormat::NTSCDV50, "mxf", "dv", PictureLayout::Yuv422p},
        {PixelFormat::BGRA_4444_8u, "mp4", "h264", PictureLayout::Yuv420p},
        {PixelFormat::BGRA_4444_8u, "mxf", "mpeg2", PictureLayout::Yuv422p},
        {PixelFormat::ARGB_4444_8u, "nut", "raw", PictureLayout::Argb},
        {PixelFormat::V210_422_10u_709, "y4m", "raw", PictureLayout::Yuv422p10},
        {PixelFormat::BGRA_4444_32f_Linear, "exr", "exr", PictureLayout::Gbrapf32},
        {PixelFormat::V210_422_10u_709, "dpx", "dpx", PictureLayout::Gbrp10},
    };
    for (const auto& row : kRows) {
        const VideoPlan plan = Plan(row.format, row.container);
        EXPECT_EQ(plan.codec->name, row.codec) << static_cast<int>(row.format);
        EXPECT_EQ(plan.conversion.target, row.layout) << static_cast<int>(row.format);
    }
}

TEST(VideoPlan, ChosenCodecsGetTheLayoutThatKeepsMost)
{
    const LayoutRow kRows[] = {
        {PixelFormat::ARGB_4444_8u, "mkv", "raw", PictureLayout::Argb},
        {PixelFormat::XRGB_4444_8u, "nut", "raw", PictureLayout::Zrgb},
        {PixelFormat::XRGB_4444_8u, "mov", "raw", PictureLayout::Bgra},
        {PixelFormat::BGRA_4444_32f, "mov", "raw", PictureLayout::Rgba64be},
        {PixelFormat::BGRA_4444_32f, "avi", "raw", PictureLayout::Bgra},
        {PixelFormat::VUYA_4444_8u, "mov", "raw", PictureLayout::Uyvy},
        {PixelFormat::VUYX_4444_32f, "avi", "raw", PictureLayout::Uyvy},
        {PixelFormat::V210_422_10u_709, "mov", "raw", PictureLayout::Uyvy},
        {PixelFormat::V210_422_10u_709, "nut", "raw", PictureLayout::Yuv422p10},
        {PixelFormat::V210_422_10u_709, "mkv", "ffv1", PictureLayout::Yuv422p10},
        {PixelFormat::YUYV_422_8u_601, "mkv", "ffv1", PictureLayout::Yuv422p},
        {PixelFormat::BGRA_4444_32f, "y4m", "raw", PictureLayout::Yuv444p16},
        {PixelFormat::VUYA_4444_8u, "y4m", "raw", PictureLayout::Yuv444p},
        {PixelFormat::NTSCDV25, "y4m", "raw", PictureLayout::Yuv411p},
        {PixelFormat::NTSCDV50, "mov", "raw", PictureLayout::Yuv422p},
        {PixelFormat::NTSCDV25, "mkv", "ffv1", PictureLayout::Yuv411p},
        {PixelFormat::NTSCDV25, "mkv", "mpeg2", PictureLayout::Yuv422p},
        {PixelFormat::NTSCDV25, "mov", "prores", PictureLayout::Yuv422p10},
        {PixelFormat::NTSCDV25, "png", "png", PictureLayout::Rgb24},
        {PixelFormat::UYVY_422_8u_709, "mov", "v408", PictureLayout::Yuv444p},
        {PixelFormat::BGRA_4444_32f, "mov", "v408", PictureLayout::Yuva444p},
        {PixelFormat::BGRX_4444_8u, "mov", "prores", PictureLayout::Yuv444p10},
        {PixelFormat::UYVY_422_8u_709, "mov", "prores", PictureLayout::Yuv422p10},
        {PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709, "mxf", "mpeg2", PictureLayout::Yuv420p},
        {PixelFormat::V210_422_10u_709, "png", "png", PictureLayout::Rgb48be},
        {PixelFormat::V210_422_10u_709, "tiff", "tiff", PictureLayout::Rgb48},
        {PixelFormat::BGRA_4444_32f, "tiff", "tiff", PictureLayout::Rgba64},
        {PixelFormat::VUYA_4444_32f, "dpx", "dpx", PictureLayout::Rgba64be},
        {PixelFormat::UYVY_422_8u_709, "exr", "exr", PictureLayout::Gbrpf32},
        {PixelFormat::VUYA_4444_8u, "exr", "exr", PictureLayout::Gbrapf32},
        {PixelFormat::BGRA_4444_32f, "mkv", "h264", PictureLayout::Yuv420p},
        {PixelFormat::BGRA_4444_8u, "mkv", "v210", PictureLayout::V210},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(Plan(row.format, row.container, row.codec).conversion.target, row.layout)
            << static_cast<int>(row.format) << " in " << row.container << " as " << row.codec;
    }
}

TEST(VideoPlan, OpaqueV408NeedsAnEvenWidth)
{
    EXPECT_EQ(Plan(DescriptionOf(PixelFormat::VUYX_4444_8u, 16, 8), "mov").encoder, "v308");
    const VideoPlan odd = Plan(DescriptionOf(PixelFormat::VUYX_4444_8u, 15, 8), "mov");
    EXPECT_EQ(odd.encoder, "v408");
    EXPECT_EQ(odd.conversion.target, PictureLayout::Yuva444p);
}

TEST(VideoPlan, EveryFormatCanBePlannedAndOpenedForEveryContainerAndCodec)
{
    for (const BR::PixelFormatInfo& format : BR::AllPixelFormats()) {
        for (const Container& container : AllContainers()) {
            for (const VideoCodec& codec : AllVideoCodecs()) {
                if (!codec.GoesInto(container)) {
                    continue;
                }
                auto clip = DescriptionOf(format.format, 720, 480);
                const DvProfile* dv = DvProfileOf(format.format);
                if (dv != nullptr) {
                    clip.width = dv->width;
                    clip.height = dv->height;
                    clip.timeScale = dv->rateNumerator;
                    clip.sampleSize = dv->rateDenominator;
                }
                const VideoPlan plan = PlanVideo(clip, container, &codec);
                EXPECT_NO_THROW(FrameConverter{plan.conversion}) << format.constant;
                EXPECT_NO_THROW(static_cast<void>(VideoEncoder::Make(plan, 1)))
                    << format.constant << " in " << container.name << " as " << codec.name;
            }
        }
    }
}

TEST(VideoPlan, H264PairsColumnsAndRowsOnlyWhereTheyCanBe)
{
    for (const auto& [width, height] : {std::pair{15, 8}, std::pair{16, 7}}) {
        EXPECT_EQ(Plan(DescriptionOf(PixelFormat::BGRA_4444_8u, width, height), "mp4").conversion.target,
                  PictureLayout::Yuv444p);
    }
}

TEST(VideoPlan, FullRangeIsMadeOnlyWhereItsReadersAreTold)
{
    const struct {
        std::string_view container;
        std::string_view codec;
        ColorTags made; ///< from R'G'B' of full-range Rec. 709
    } kRows[] = {{"mov", "prores", {1, 1, 1, false}}, {"mov", "v210", {1, 1, 1, false}},
                 {"mkv", "v210", {1, 1, 1, false}},   {"avi", "v408", {1, 1, 1, false}},
                 {"mkv", "v408", {1, 1, 1, false}},   {"mxf", "mpeg2", {1, 1, 1, false}},
                 {"mkv", "dv", {1, 1, 6, false}}, // 525-line DV's own matrix
                 {"mp4", "h264", {1, 1, 1, true}},    {"avi", "h264", {1, 1, 1, true}},
                 {"y4m", "raw", {1, 1, 1, true}}};
    for (const auto& row : kRows) {
        auto clip = DescriptionOf(PixelFormat::BGRA_4444_32f, 720, 480);
        clip.colorCodes = {1, 1, 1, 1};
        const VideoPlan made = Plan(clip, row.container, row.codec);
        EXPECT_EQ(made.conversion.coding.fullRange, row.made.fullRange) << row.codec;
        EXPECT_EQ(made.tags, row.made) << row.codec;
        // Code values are copied, and with them the range that the clip announces.
        SetFormat(clip, PixelFormat::UYVY_422_8u_709);
        const VideoPlan kept = Plan(clip, row.container, row.codec);
        EXPECT_FALSE(kept.conversion.coding.fullRange) << row.codec;
        EXPECT_EQ(kept.tags, (ColorTags{1, 1, 1, true})) << row.codec;
    }
}

TEST(VideoPlan, InterlacedH264PairsRowsOfFields)
{
    const struct {
        int height;
        PictureLayout layout;
    } kRows[] = {{2, PictureLayout::Yuv444p},   {4, PictureLayout::Yuv420p},  {6, PictureLayout::Yuv444p},
                 {8, PictureLayout::Yuv420p},   {10, PictureLayout::Yuv444p}, {12, PictureLayout::Yuv420p},
                 {486, PictureLayout::Yuv444p}, {576, PictureLayout::Yuv420p}};
    for (const std::uint8_t fieldType : {std::uint8_t{1}, std::uint8_t{2}}) {
        for (const auto& row : kRows) {
            auto clip = DescriptionOf(PixelFormat::UYVY_422_8u_601, 16, row.height);
            clip.fieldType = fieldType;
            const VideoPlan plan = Plan(clip, "mp4");
            EXPECT_EQ(plan.conversion.target, row.layout) << row.height;
            EXPECT_NO_THROW(static_cast<void>(VideoEncoder::Make(plan, 1))) << row.height;
        }
        for (const int height : {1, 3, 5, 7, 243, 487}) {
            auto clip = DescriptionOf(PixelFormat::UYVY_422_8u_601, 16, height);
            clip.fieldType = fieldType;
            EXPECT_THROW(static_cast<void>(Plan(clip, "mp4")), ExportError) << height;
        }
    }
}

TEST(VideoPlan, RgbBecomesDvByTheProfilesMatrix)
{
    auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u, 720, 480);
    clip.colorCodes = {9, 14, 9, 1};
    const VideoPlan plan = Plan(clip, "mov", "dv");
    EXPECT_EQ(plan.conversion.coding, (YCbCrCoding{Matrix::Smpte170M, false}));
    EXPECT_EQ(plan.tags, (ColorTags{9, 14, 6, false}));
}

TEST(VideoPlan, ChromaRowsFollowTheFormatElseTheFieldOrder)
{
    EXPECT_EQ(Plan(PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, "mkv").conversion.chromaRows,
              ChromaRows::Field);
    auto clip = DescriptionOf(PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709);
    clip.fieldType = 1;
    EXPECT_EQ(Plan(clip, "mkv").conversion.chromaRows, ChromaRows::Frame);
    SetFormat(clip, PixelFormat::BGRA_4444_8u);
    EXPECT_EQ(Plan(clip, "mp4").conversion.chromaRows, ChromaRows::Field);
}

TEST(VideoPlan, RateAndAspectAreInLowestTerms)
{
    auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u);
    clip.timeScale = 60000;
    clip.sampleSize = 2002;
    clip.pixelAspect = {128, 64};
    const PictureGeometry geometry = Plan(clip, "mkv").geometry;
    EXPECT_EQ(geometry.rateNumerator, 30000);
    EXPECT_EQ(geometry.rateDenominator, 1001);
    EXPECT_EQ(geometry.aspectNumerator, 2);
    EXPECT_EQ(geometry.aspectDenominator, 1);
}

TEST(DvProfiles, OtherFormatsGetTheProfileOfTheirSizeAndRate)
{
    auto clip = DescriptionOf(PixelFormat::UYVY_422_8u_601, 720, 576);
    clip.timeScale = 50;
    clip.sampleSize = 2;
    EXPECT_EQ(DvProfileFor(clip).format, PixelFormat::PALDV50);
    clip.sampleSize = 1;
    EXPECT_THROW(static_cast<void>(DvProfileFor(clip)), ExportError);
}

TEST(AudioPlan, OnlySixChannelsOfType3AreReordered)
{
    const struct {
        int channels;
        int type;
        std::vector<std::int32_t> hostChannels;
        SpeakerLayout layout;
    } kRows[] = {{1, 1, {0}, SpeakerLayout::Mono},
                 {1, 3, {0}, SpeakerLayout::Mono},
                 {2, 2, {0, 1}, SpeakerLayout::Stereo},
                 {2, 3, {0, 1}, SpeakerLayout::Stereo},
                 {5, 3, {0, 1, 2, 3, 4}, SpeakerLayout::None},
                 {6, 3, {0, 1, 4, 5, 2, 3}, SpeakerLayout::Surround51}, // L R Ls Rs C LFE
                 {6, 0, {0, 1, 2, 3, 4, 5}, SpeakerLayout::None},
                 {6, 2, {0, 1, 2, 3, 4, 5}, SpeakerLayout::None},
                 {6, 4, {0, 1, 2, 3, 4, 5}, SpeakerLayout::None},
                 {7, 3, {0, 1, 2, 3, 4, 5, 6}, SpeakerLayout::None},
                 {8, 3, {0, 1, 2, 3, 4, 5, 6, 7}, SpeakerLayout::None}};
    for (const auto& row : kRows) {
        auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u);
        clip.channelCount = row.channels;
        clip.channelType = row.type;
        const OutputPlan plan = PlanOutput(clip, {.container = ContainerNamed("mkv")});
        EXPECT_EQ(plan.audio->hostChannels, row.hostChannels) << row.channels << " of type " << row.type;
        EXPECT_EQ(plan.audio->layout, row.layout) << row.channels << " of type " << row.type;
    }
}

TEST(AudioPlan, CodecsThatAreTooSmallGiveWayToPcmUnlessTheyWereChosen)
{
    auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u);
    clip.channelCount = 9;
    EXPECT_EQ(PlanOutput(clip, {.container = ContainerNamed("mkv")}).audio->codec->name, "pcm24");
    const auto refusal = [&](const OutputRequest& request) -> std::string {
        try {
            static_cast<void>(PlanOutput(clip, request));
        } catch (const ExportError& error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(refusal({.container = ContainerNamed("mkv"), .audioCodec = AudioCodecNamed("flac")}),
              "flac does not take 9 channels at 48000 Hz; use --audio-codec pcm24");
    EXPECT_EQ(refusal({.container = ContainerNamed("mp4")}),
              "aac does not take 9 channels at 48000 Hz; write mov, mkv or wav files");
}

TEST(Tables, NamesAndExtensionsAreFoundInAnyCase)
{
    EXPECT_EQ(ContainerNamed("MOV"), ContainerNamed("qt"));
    EXPECT_EQ(ContainerNamed("tif"), ContainerNamed("TIFF"));
    EXPECT_EQ(ContainerNamed("mov")->muxer, "mov");
    EXPECT_EQ(ContainerNamed(""), nullptr);
    EXPECT_EQ(ContainerNamed("webm"), nullptr);
    EXPECT_EQ(VideoCodecNamed("ProRes")->encoder, "prores_ks");
    EXPECT_EQ(VideoCodecNamed(""), nullptr);
    EXPECT_EQ(AudioCodecNamed("FLAC")->encoder, "flac");
    EXPECT_EQ(AudioCodecNamed("mp3"), nullptr);
}

/// The words of a row's list.
std::vector<std::string> Words(std::string_view list)
{
    std::istringstream stream{std::string(list)};
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(Tables, EveryNameThatARowMentionsIsARows)
{
    for (const VideoCodec& codec : AllVideoCodecs()) {
        for (const std::string& name : Words(codec.containers)) {
            ASSERT_NE(ContainerNamed(name), nullptr) << codec.name << " " << name;
            EXPECT_TRUE(ContainerNamed(name)->TakesVideo()) << codec.name << " " << name;
        }
    }
    for (const AudioCodec& codec : AllAudioCodecs()) {
        for (const std::string& name : Words(codec.containers)) {
            ASSERT_NE(ContainerNamed(name), nullptr) << codec.name << " " << name;
            EXPECT_TRUE(ContainerNamed(name)->TakesAudio()) << codec.name << " " << name;
        }
    }
    for (const Container& container : AllContainers()) {
        const DefaultVideoCodecs& video = container.videoCodecs;
        for (const std::string_view name : {video.rgb8, video.rgbFloat, video.ycbcr8, video.ycbcrFloat,
                                            video.pairs422, video.v210, video.planar420, video.dv}) {
            EXPECT_EQ(!name.empty(), container.TakesVideo()) << container.name;
            const VideoCodec* codec = VideoCodecNamed(name);
            EXPECT_EQ(codec != nullptr && codec->GoesInto(container), container.TakesVideo())
                << container.name << " " << name;
        }
        if (container.TakesAudio()) {
            const AudioCodec* codec = AudioCodecNamed(container.audioCodec);
            EXPECT_TRUE(codec != nullptr && codec->GoesInto(container)) << container.name;
        }
    }
}

} // namespace
} // namespace tessel::exporting
