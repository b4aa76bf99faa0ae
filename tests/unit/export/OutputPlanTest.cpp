#include "ClipModel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/encode/VideoEncoder.h>
#include <tessel/export/plan/OutputPlan.h>

#include <gtest/gtest.h>

namespace tessel::exporting {
namespace {

using BR::PixelFormat;

VideoPlan Plan(PixelFormat format, Container container, std::optional<VideoCodec> codec = std::nullopt)
{
    return PlanVideo(DescriptionOf(format, 720, 480), container, codec);
}

TEST(VideoPlan, EachFormatKeepsItsSamplesWhereTheContainerCan)
{
    const struct {
        PixelFormat format;
        Container container;
        VideoCodec codec;
        PictureLayout layout;
    } kRows[] = {
        {PixelFormat::BGRA_4444_8u, Container::Mkv, VideoCodec::Ffv1, PictureLayout::Bgra},
        {PixelFormat::XRGB_4444_8u, Container::Mkv, VideoCodec::Ffv1, PictureLayout::Bgr0},
        {PixelFormat::VUYA_4444_8u, Container::Mkv, VideoCodec::Ffv1, PictureLayout::Yuva444p},
        {PixelFormat::VUYX_4444_32f_709, Container::Mkv, VideoCodec::Ffv1, PictureLayout::Yuv444p16},
        {PixelFormat::ARGB_4444_32f, Container::Mkv, VideoCodec::Ffv1, PictureLayout::Gbrap16},
        {PixelFormat::UYVY_422_8u_709, Container::Mkv, VideoCodec::Raw, PictureLayout::Uyvy},
        {PixelFormat::V210_422_10u_601, Container::Mkv, VideoCodec::V210, PictureLayout::V210},
        {PixelFormat::V210_422_10u_601, Container::Mov, VideoCodec::V210, PictureLayout::V210},
        {PixelFormat::YUYV_422_8u_601, Container::Mov, VideoCodec::Raw, PictureLayout::Yuyv},
        {PixelFormat::BGRA_4444_8u, Container::Mov, VideoCodec::Png, PictureLayout::Rgba},
        {PixelFormat::VUYA_4444_8u, Container::Mov, VideoCodec::V408, PictureLayout::Yuva444p},
        {PixelFormat::VUYX_4444_8u, Container::Mov, VideoCodec::V408, PictureLayout::Yuv444p},
        {PixelFormat::BGRA_4444_32f, Container::Mov, VideoCodec::ProRes, PictureLayout::Yuva444p10},
        {PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, Container::Mov, VideoCodec::Raw,
         PictureLayout::Yuv420p},
        {PixelFormat::NTSCDV25, Container::Mov, VideoCodec::Dv, PictureLayout::Yuv411p},
        {PixelFormat::NTSCDV50, Container::Mxf, VideoCodec::Dv, PictureLayout::Yuv422p},
        {PixelFormat::BGRA_4444_8u, Container::Mp4, VideoCodec::H264, PictureLayout::Yuv420p},
        {PixelFormat::BGRA_4444_8u, Container::Mxf, VideoCodec::Mpeg2, PictureLayout::Yuv422p},
        {PixelFormat::ARGB_4444_8u, Container::Nut, VideoCodec::Raw, PictureLayout::Argb},
        {PixelFormat::V210_422_10u_709, Container::Y4m, VideoCodec::Raw, PictureLayout::Yuv422p10},
        {PixelFormat::BGRA_4444_32f_Linear, Container::Exr, VideoCodec::Exr, PictureLayout::Gbrapf32},
        {PixelFormat::V210_422_10u_709, Container::Dpx, VideoCodec::Dpx, PictureLayout::Gbrp10},
    };
    for (const auto& row : kRows) {
        const VideoPlan plan = Plan(row.format, row.container);
        EXPECT_EQ(plan.codec, row.codec) << static_cast<int>(row.format);
        EXPECT_EQ(plan.conversion.target, row.layout) << static_cast<int>(row.format);
    }
}

TEST(VideoPlan, EveryFormatCanBePlannedAndOpenedForEveryContainerAndCodec)
{
    for (const BR::PixelFormatInfo& format : BR::AllPixelFormats()) {
        for (int container = 0; container <= static_cast<int>(Container::Exr); ++container) {
            const ContainerInfo& info = InfoOf(static_cast<Container>(container));
            for (const VideoCodec codec : info.videoCodecs) {
                auto clip = DescriptionOf(format.format, 720, 480);
                const DvProfile* dv = DvProfileOf(format.format);
                if (dv != nullptr) {
                    clip.width = dv->width;
                    clip.height = dv->height;
                    clip.timeScale = dv->rateNumerator;
                    clip.sampleSize = dv->rateDenominator;
                }
                const VideoPlan plan = PlanVideo(clip, info.container, codec);
                EXPECT_NO_THROW(FrameConverter{plan.conversion}) << format.constant;
                EXPECT_NO_THROW(static_cast<void>(VideoEncoder::Make(plan, info.container, 1)))
                    << format.constant << " in " << info.name << " as " << NameOf(codec);
            }
        }
    }
}

TEST(VideoPlan, H264PairsColumnsAndRowsOnlyWhereTheyCanBe)
{
    for (const auto& [width, height] : {std::pair{15, 8}, std::pair{16, 7}}) {
        EXPECT_EQ(PlanVideo(DescriptionOf(PixelFormat::BGRA_4444_8u, width, height), Container::Mp4, {})
                      .conversion.target,
                  PictureLayout::Yuv444p);
    }
}

TEST(VideoPlan, FullRangeIsMadeOnlyWhereItsReadersAreTold)
{
    const struct {
        Container container;
        VideoCodec codec;
        bool fullRange;
    } kRows[] = {{Container::Mov, VideoCodec::ProRes, false}, {Container::Mov, VideoCodec::V210, false},
                 {Container::Mkv, VideoCodec::V210, false},   {Container::Avi, VideoCodec::V408, false},
                 {Container::Mkv, VideoCodec::V408, false},   {Container::Mxf, VideoCodec::Mpeg2, false},
                 {Container::Mkv, VideoCodec::Dv, false},     {Container::Mp4, VideoCodec::H264, true},
                 {Container::Avi, VideoCodec::H264, true},    {Container::Y4m, VideoCodec::Raw, true}};
    for (const auto& row : kRows) {
        auto clip = DescriptionOf(PixelFormat::BGRA_4444_32f, 720, 480);
        clip.colorCodes = {1, 1, 1, 1};
        const VideoPlan made = PlanVideo(clip, row.container, row.codec);
        EXPECT_EQ(made.conversion.coding.fullRange, row.fullRange) << NameOf(row.codec);
        const int matrix = row.codec == VideoCodec::Dv ? 6 : 1; // 525-line DV's own
        EXPECT_EQ(made.tags, (ColorTags{1, 1, matrix, row.fullRange})) << NameOf(row.codec);
        // What has codes keeps them, and what it says about them.
        clip.pixelFormat = PixelFormat::UYVY_422_8u_709;
        const VideoPlan kept = PlanVideo(clip, row.container, row.codec);
        EXPECT_FALSE(kept.conversion.coding.fullRange) << NameOf(row.codec);
        EXPECT_EQ(kept.tags, (ColorTags{1, 1, 1, true})) << NameOf(row.codec);
    }
}

TEST(VideoPlan, InterlacedH264PairsRowsOfFields)
{
    for (const std::uint8_t fieldType : {std::uint8_t{1}, std::uint8_t{2}}) {
        for (int height = 1; height <= 12; ++height) {
            auto clip = DescriptionOf(PixelFormat::UYVY_422_8u_601, 16, height);
            clip.fieldType = fieldType;
            if (height % 2 != 0) {
                EXPECT_THROW(static_cast<void>(PlanVideo(clip, Container::Mp4, {})), ExportError) << height;
                continue;
            }
            const VideoPlan plan = PlanVideo(clip, Container::Mp4, {});
            EXPECT_EQ(plan.conversion.target, height % 4 == 0 ? PictureLayout::Yuv420p : PictureLayout::Yuv444p)
                << height;
            EXPECT_NO_THROW(static_cast<void>(VideoEncoder::Make(plan, Container::Mp4, 1))) << height;
        }
    }
}

TEST(VideoPlan, RgbBecomesDvByTheProfilesMatrix)
{
    auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u, 720, 480);
    clip.colorCodes = {9, 14, 9, 1};
    const VideoPlan plan = PlanVideo(clip, Container::Mov, VideoCodec::Dv);
    EXPECT_EQ(plan.conversion.coding, (YCbCrCoding{Matrix::Smpte170M, false}));
    EXPECT_EQ(plan.tags, (ColorTags{9, 14, 6, false}));
}

TEST(VideoPlan, ChromaRowsFollowTheFormatElseTheFieldOrder)
{
    EXPECT_EQ(
        Plan(PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, Container::Mkv).conversion.chromaRows,
        ChromaRows::Field);
    auto clip = DescriptionOf(PixelFormat::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709);
    clip.fieldType = 1;
    EXPECT_EQ(PlanVideo(clip, Container::Mkv, {}).conversion.chromaRows, ChromaRows::Frame);
    clip.pixelFormat = PixelFormat::BGRA_4444_8u;
    EXPECT_EQ(PlanVideo(clip, Container::Mp4, {}).conversion.chromaRows, ChromaRows::Field);
}

TEST(VideoPlan, RateAndAspectAreInLowestTerms)
{
    auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u);
    clip.timeScale = 60000;
    clip.sampleSize = 2002;
    clip.pixelAspect = {128, 64};
    const PictureGeometry geometry = PlanVideo(clip, Container::Mkv, {}).geometry;
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
    for (int channels = 1; channels <= 8; ++channels) {
        for (int type = 0; type <= 4; ++type) {
            auto clip = DescriptionOf(PixelFormat::BGRA_4444_8u);
            clip.channelCount = channels;
            clip.channelType = type;
            const OutputPlan plan = PlanOutput(clip, {.container = Container::Mkv});
            std::vector<std::int32_t> expected;
            for (int i = 0; i < channels; ++i) {
                expected.push_back(i);
            }
            if (channels == 6 && type == 3) {
                expected = {0, 1, 4, 5, 2, 3};
            }
            EXPECT_EQ(plan.audio->hostChannels, expected) << channels << " of type " << type;
            EXPECT_EQ(plan.audio->layout == SpeakerLayout::Surround51, channels == 6 && type == 3);
        }
    }
}

TEST(Containers, NamesAndExtensionsAreFoundInAnyCase)
{
    EXPECT_EQ(ContainerNamed("MOV"), Container::Mov);
    EXPECT_EQ(ContainerNamed("tif"), Container::Tiff);
    EXPECT_EQ(ContainerNamed(""), std::nullopt);
    EXPECT_EQ(ContainerNamed("webm"), std::nullopt);
    for (int i = 0; i <= static_cast<int>(VideoCodec::Dv); ++i) {
        EXPECT_EQ(VideoCodecNamed(NameOf(static_cast<VideoCodec>(i))), static_cast<VideoCodec>(i));
    }
    for (int i = 0; i <= static_cast<int>(AudioCodec::Opus); ++i) {
        EXPECT_EQ(AudioCodecNamed(NameOf(static_cast<AudioCodec>(i))), static_cast<AudioCodec>(i));
    }
}

} // namespace
} // namespace tessel::exporting
