#include "Container.h"

#include "Names.h"

#include <array>

namespace tessel::exporting {
namespace {

using enum PictureLayout;

constexpr std::array kAnyRaw{Bgra,       Argb,      Bgr0,    Zrgb,      Gbrap16, Gbrp16,  Yuva444p, Yuv444p,
                             Yuva444p16, Yuv444p16, Yuv422p, Yuv422p10, Yuv420p, Yuv411p, Uyvy,     Yuyv};
// QuickTime and AVI name raw layouts by codes of which readers know only a few.
constexpr std::array kFewRaw{Bgra, Uyvy, Yuyv, Yuv422p, Yuv420p, Yuv411p};
constexpr std::array kQuickTimeRaw{Bgra, Rgba64be, Uyvy, Yuyv, Yuv422p, Yuv420p, Yuv411p};
constexpr std::array kY4mRaw{Yuv444p, Yuv444p16, Yuv422p, Yuv422p10, Yuv420p, Yuv411p};

constexpr std::array<RawTag, 3> kQuickTimeTags{{{Rgba64be, "b64a"}, {Uyvy, "2vuy"}, {Yuyv, "yuvs"}}};

constexpr DefaultVideoCodecs Always(std::string_view codec)
{
    return {codec, codec, codec, codec, codec, codec, codec, codec};
}

constexpr DefaultVideoCodecs AlwaysBut(std::string_view codec, std::string_view dv)
{
    DefaultVideoCodecs codecs = Always(codec);
    codecs.dv = dv;
    return codecs;
}

constexpr DefaultVideoCodecs kLossless{.rgb8 = "ffv1",
                                       .rgbFloat = "ffv1",
                                       .ycbcr8 = "ffv1",
                                       .ycbcrFloat = "ffv1",
                                       .pairs422 = "raw",
                                       .v210 = "v210",
                                       .planar420 = "ffv1",
                                       .dv = "dv"};
// What editors open.
constexpr DefaultVideoCodecs kQuickTime{.rgb8 = "png",
                                        .rgbFloat = "prores",
                                        .ycbcr8 = "v408",
                                        .ycbcrFloat = "prores",
                                        .pairs422 = "raw",
                                        .v210 = "v210",
                                        .planar420 = "raw",
                                        .dv = "dv"};
constexpr DefaultVideoCodecs kUnpacked{.rgb8 = "raw",
                                       .rgbFloat = "raw",
                                       .ycbcr8 = "raw",
                                       .ycbcrFloat = "raw",
                                       .pairs422 = "raw",
                                       .v210 = "v210",
                                       .planar420 = "raw",
                                       .dv = "dv"};

// A coder's delay stands in the sound's header. FFmpeg would also move the pictures back by it.
constexpr std::string_view kMatroskaOptions = "avoid_negative_ts=disabled";
constexpr std::string_view kMovOptions = "movflags=+write_colr";
// A pipe cannot seek, so the index is written in fragments.
constexpr std::string_view kMovPipeOptions = "movflags=+write_colr+frag_keyframe+empty_moov";

constexpr Container Sequence(std::string_view name, std::string_view otherExtension, Keeps keeps)
{
    return {.name = name,
            .otherExtension = otherExtension,
            .kind = ContainerKind::Sequence,
            .videoCodecs = Always(name),
            .keeps = keeps};
}

constexpr std::array<Container, 13> kContainers{{
    {.name = "mkv",
     .kind = ContainerKind::Movie,
     .muxer = "matroska",
     .muxerOptions = kMatroskaOptions,
     .pipeOptions = kMatroskaOptions,
     .headersOutOfBand = true,
     .videoCodecs = kLossless,
     .audioCodec = "flac",
     .rawLayouts = kAnyRaw,
     .keeps = Keeps::Shape | Keeps::Colors | Keeps::Range | Keeps::Timecode | Keeps::CoderDelay},
    {.name = "mov",
     .otherExtension = "qt",
     .kind = ContainerKind::Movie,
     .muxer = "mov",
     .muxerOptions = kMovOptions,
     .pipeOptions = kMovPipeOptions,
     .isQuickTime = true,
     .headersOutOfBand = true,
     .videoCodecs = kQuickTime,
     .audioCodec = "pcm24",
     .rawLayouts = kQuickTimeRaw,
     .rawTags = kQuickTimeTags,
     .keeps = Keeps::Shape | Keeps::Colors | Keeps::ChannelLayout | Keeps::Timecode | Keeps::CoderDelay},
    {.name = "mp4",
     .otherExtension = "m4v",
     .kind = ContainerKind::Movie,
     .muxer = "mp4",
     .muxerOptions = kMovOptions,
     .pipeOptions = kMovPipeOptions,
     .isQuickTime = true,
     .headersOutOfBand = true,
     .videoCodecs = Always("h264"),
     .audioCodec = "aac",
     .keeps = Keeps::Shape | Keeps::Colors | Keeps::Range | Keeps::ChannelLayout | Keeps::CoderDelay},
    {.name = "mxf",
     .kind = ContainerKind::Movie,
     .muxer = "mxf",
     .needsToSeek = true,
     .namesOrderOfMpeg2Only = true,
     .videoCodecs = AlwaysBut("mpeg2", /*dv=*/"dv"),
     .commentKey = "comment_part", // the muxer writes those that begin so
     .audioCodec = "pcm24",
     .announcedWidthStep = 16, // macroblocks
     .onlySampleRate = 48'000,
     .keeps = Keeps::Colors | Keeps::Range | Keeps::Timecode},
    {.name = "avi",
     .kind = ContainerKind::Movie,
     .muxer = "avi",
     .needsToSeek = true,
     .videoCodecs = kLossless,
     .audioCodec = "pcm24",
     .rawLayouts = kFewRaw,
     .keeps = Keeps::Shape | Keeps::ChannelLayout},
    {.name = "nut",
     .kind = ContainerKind::Movie,
     .muxer = "nut",
     .videoCodecs = kUnpacked,
     .audioCodec = "pcm24",
     .rawLayouts = kAnyRaw,
     .keeps = Keeps::PixelAspect},
    // The Y4M writer makes whole files; the muxer only passes them on.
    {.name = "y4m",
     .kind = ContainerKind::PictureOnly,
     .muxer = "rawvideo",
     .videoCodecs = Always("raw"),
     .rawLayouts = kY4mRaw,
     .rawWriter = RawWriter::Y4m,
     .keeps = Keeps::Shape | Keeps::Range},
    {.name = "wav",
     .otherExtension = "wave",
     .kind = ContainerKind::SoundOnly,
     .muxer = "wav",
     .muxerOptions = "rf64=auto",
     .pipeOptions = "rf64=auto",
     .audioCodec = "pcm24",
     .keeps = Keeps::ChannelLayout},
    Sequence("png", {}, Keeps::PixelAspect | Keeps::Colors | Keeps::Range),
    Sequence("tiff", "tif", Keeps::PixelAspect),
    Sequence("dpx", {}, Keeps::PixelAspect | Keeps::Colors),
    Sequence("exr", {}, Keeps::PixelAspect | Keeps::Colors),
    {.name = "null",
     .muxer = "null",
     .takesEveryCodec = true,
     .videoCodecs = kUnpacked,
     .audioCodec = "pcm24",
     .rawLayouts = kAnyRaw,
     .keeps = Keeps::Everything},
}};

} // namespace

std::span<const Container> AllContainers() noexcept
{
    return kContainers;
}

const Container* ContainerNamed(std::string_view name) noexcept
{
    if (const auto* named = RowNamed<Container>(kContainers, name)) {
        return named;
    }
    for (const Container& container : kContainers) {
        if (!name.empty() && IsSameName(container.otherExtension, name)) {
            return &container;
        }
    }
    return nullptr;
}

std::string ContainerNames()
{
    return JoinNames(kContainers, [](const Container&) { return true; });
}

} // namespace tessel::exporting
