#include "VideoCodec.h"

#include "Names.h"
#include "Timecode.h"
#include "VideoPlan.h"

#include <array>
#include <string>
#include <utility>

namespace tessel::exporting {
namespace {

using enum PictureLayout;
using importhost::FieldOrder;

constexpr std::array kFfv1Layouts{Bgra,       Bgr0,      Gbrap16, Gbrp16,    Yuva444p, Yuv444p,
                                  Yuva444p16, Yuv444p16, Yuv422p, Yuv422p10, Yuv420p,  Yuv411p};
constexpr std::array kV210Layouts{V210};
constexpr std::array kV408Layouts{Yuva444p, Yuv444p};
constexpr std::array kProResLayouts{Yuva444p10, Yuv444p10, Yuv422p10};
constexpr std::array kPngLayouts{Rgba, Rgb24, Rgba64be, Rgb48be};
constexpr std::array kTiffLayouts{Rgba, Rgb24, Rgba64, Rgb48};
constexpr std::array kDpxLayouts{Rgba, Rgb24, Rgba64be, Rgb48be, Gbrp10};
constexpr std::array kExrLayouts{Gbrapf32, Gbrpf32};
constexpr std::array kDnxhrLayouts{Yuv422p, Yuv422p10, Yuv444p10};
constexpr std::array kMjpegLayouts{Yuv444p, Yuv422p, Yuv420p};
constexpr std::array kH264Layouts{Yuv420p, Yuv444p};
constexpr std::array kDeepLayouts{Yuv420p, Yuv444p, Yuv420p10, Yuv444p10};
constexpr std::array kMpeg2Layouts{Yuv422p, Yuv420p};

void SetFfv1Options(const VideoPlan& /*plan*/, EncoderOptions& options)
{
    options.values = {{"level", "3"}, {"g", "1"}, {"slicecrc", "1"}};
}

void SetProResOptions(const VideoPlan& plan, EncoderOptions& options)
{
    // 4444 with 16-bit alpha, 4444 without, 422 HQ. Some readers know no other vendor.
    const LayoutInfo& layout = InfoOf(plan.conversion.target);
    options.values = {{"profile", layout.chromaShiftX == 0 ? "4444" : "hq"},
                      {"alpha_bits", layout.HasAlpha() ? "16" : "0"},
                      {"vendor", "apl0"}};
}

void SetDnxhrOptions(const VideoPlan& plan, EncoderOptions& options)
{
    const LayoutInfo& layout = InfoOf(plan.conversion.target);
    const char* profile = layout.bits == 8 ? "dnxhr_hq" : "dnxhr_hqx";
    options.values = {{"profile", layout.chromaShiftX == 0 ? "dnxhr_444" : profile}};
}

/// A fixed quantiser, which encoders take in units of 1/118 of their own scale.
void SetQuantizer(const VideoPlan& plan, EncoderOptions& options)
{
    constexpr int kUnits = 118;
    options.flags = "+qscale";
    options.values.emplace_back("global_quality", std::to_string(kUnits * *plan.quality));
}

void SetMjpegOptions(const VideoPlan& plan, EncoderOptions& options)
{
    SetQuantizer(plan, options);
    options.values.emplace_back("qmin", "1");
}

void SetPngOptions(const VideoPlan& /*plan*/, EncoderOptions& options)
{
    // Rows of test pictures resemble the rows above them.
    options.values = {{"pred", "up"}, {"compression_level", "3"}};
}

void SetTiffOptions(const VideoPlan& /*plan*/, EncoderOptions& options)
{
    options.values = {{"compression_algo", "deflate"}};
}

void SetExrOptions(const VideoPlan& /*plan*/, EncoderOptions& options)
{
    options.values = {{"compression", "zip16"}};
}

void SetH264Options(const VideoPlan& plan, EncoderOptions& options)
{
    options.values = {{"crf", std::to_string(*plan.quality)}, {"preset", "medium"}};
    if (plan.geometry.order != FieldOrder::Progressive) {
        options.values.emplace_back("x264-params",
                                    plan.geometry.order == FieldOrder::UpperFirst ? "tff=1" : "bff=1");
    }
}

void SetHevcOptions(const VideoPlan& plan, EncoderOptions& options)
{
    // x265 writes to standard error by itself.
    options.values = {
        {"crf", std::to_string(*plan.quality)}, {"preset", "medium"}, {"x265-params", "log-level=error"}};
}

void SetAv1Options(const VideoPlan& plan, EncoderOptions& options)
{
    options.values = {{"crf", std::to_string(*plan.quality)}, {"b", "0"}, {"cpu-used", "6"}, {"row-mt", "1"}};
}

void SetVp9Options(const VideoPlan& plan, EncoderOptions& options)
{
    options.values = {{"crf", std::to_string(*plan.quality)}, {"b", "0"}, {"cpu-used", "4"}, {"row-mt", "1"}};
}

void SetMpeg2Options(const VideoPlan& plan, EncoderOptions& options)
{
    // Intra pictures; 28 is the most that the non-linear scale knows.
    options.values = {{"g", "0"}, {"qmax", "28"}, {"non_linear_quant", "1"}, {"intra_vlc", "1"}};
    if (plan.startIndex != 0) { // each picture has a timecode, counted from 0 in the whole movie
        const Timecode first(plan.geometry.rateNumerator, plan.geometry.rateDenominator, /*drop=*/false);
        options.values.emplace_back("gop_timecode", first.After(plan.startIndex));
    }
    SetQuantizer(plan, options);
}

constexpr std::array<VideoCodec, 17> kVideoCodecs{{
    {.name = "ffv1",
     .title = "FFV1",
     .encoder = "ffv1",
     .containers = "mkv mov avi nut",
     .layouts = kFfv1Layouts,
     .setOptions = SetFfv1Options,
     .codesFields = false,
     .repeats = true},
    {.name = "raw",
     .title = "raw",
     .encoder = "rawvideo",
     .containers = "mkv mov avi nut y4m",
     .otherNames = "uncompressed",
     .rule = LayoutRule::KeepRaw},
    // Written as it stands in memory: FFmpeg's encoder would unpack it, clip it and pack it again.
    {.name = "v210", .title = "v210", .encoder = {}, .containers = "mkv mov avi nut", .layouts = kV210Layouts},
    {.name = "v408",
     .title = "v408",
     .encoder = "v408",
     .containers = "mkv mov avi nut",
     .layouts = kV408Layouts,
     .opaqueEncoder = "v308",
     .repeats = true},
    {.name = "prores",
     .title = "ProRes",
     .encoder = "prores_ks",
     .containers = "mkv mov avi nut",
     .otherNames = "prores_aw",
     .layouts = kProResLayouts,
     .setOptions = SetProResOptions,
     .streamDecides = Keeps::Range,
     .repeats = true},
    {.name = "dnxhr",
     .title = "DNxHR",
     .encoder = "dnxhd",
     .containers = "mkv mov mxf",
     .layouts = kDnxhrLayouts,
     .setOptions = SetDnxhrOptions,
     .notInQuickTime = Keeps::FieldOrder | Keeps::Range,
     .codesFields = false,
     .repeats = true,
     .repair = PacketRepair::DnxhrColorVolume},
    {.name = "mjpeg",
     .title = "Motion JPEG",
     .encoder = "mjpeg",
     .containers = "mkv mov avi nut",
     .otherNames = "jpeg jpg",
     .layouts = kMjpegLayouts,
     .keeps = Keeps::Range,
     .setOptions = SetMjpegOptions,
     .quality = {"quantiser", 1, 31, 2},
     .codesFields = false,
     .repeats = true,
     .isFullRange = true},
    {.name = "png",
     .title = "PNG",
     .encoder = "png",
     .containers = "mkv mov avi nut png",
     .layouts = kPngLayouts,
     .setOptions = SetPngOptions,
     .repeats = true},
    {.name = "tiff",
     .title = "TIFF",
     .encoder = "tiff",
     .containers = "tiff",
     .otherNames = "tif",
     .layouts = kTiffLayouts,
     .setOptions = SetTiffOptions,
     .repeats = true},
    {.name = "dpx",
     .title = "DPX",
     .encoder = "dpx",
     .containers = "dpx",
     .layouts = kDpxLayouts,
     .repeats = true,
     .repair = PacketRepair::DpxColors},
    {.name = "exr",
     .title = "OpenEXR",
     .encoder = "exr",
     .containers = "exr",
     .otherNames = "openexr",
     .layouts = kExrLayouts,
     .setOptions = SetExrOptions,
     .repeats = true},
    {.name = "h264",
     .title = "H.264",
     .encoder = "libx264",
     .containers = "mkv mov mp4 mxf avi nut",
     .otherNames = "h.264 avc x264",
     .rule = LayoutRule::Playable,
     .layouts = kH264Layouts,
     .keeps = Keeps::Shape | Keeps::Colors | Keeps::Range,
     .setOptions = SetH264Options,
     .quality = {"CRF", 0, 51, 16},
     .refersToOthers = true},
    {.name = "hevc",
     .title = "HEVC",
     .encoder = "libx265",
     .containers = "mkv mov mp4 nut",
     .otherNames = "h265 h.265 x265",
     .rule = LayoutRule::Playable,
     .layouts = kDeepLayouts,
     .keeps = Keeps::PixelAspect | Keeps::Colors | Keeps::Range,
     .setOptions = SetHevcOptions,
     .quality = {"CRF", 0, 51, 16},
     .quickTimeTag = "hvc1",
     .codesFields = false,
     .refersToOthers = true},
    {.name = "av1",
     .title = "AV1",
     .encoder = "libaom-av1",
     .containers = "mkv mp4 nut",
     .otherNames = "libaom svtav1 libsvtav1",
     .rule = LayoutRule::Playable,
     .layouts = kDeepLayouts,
     .keeps = Keeps::Colors | Keeps::Range,
     .setOptions = SetAv1Options,
     .quality = {"CRF", 0, 63, 20},
     .codesFields = false,
     .refersToOthers = true},
    {.name = "vp9",
     .title = "VP9",
     .encoder = "libvpx-vp9",
     .containers = "mkv mp4 nut",
     .otherNames = "libvpx",
     .rule = LayoutRule::Playable,
     .layouts = kDeepLayouts,
     .keeps = Keeps::Range,
     .setOptions = SetVp9Options,
     .quality = {"CRF", 0, 63, 20},
     .codesFields = false,
     .refersToOthers = true},
    {.name = "mpeg2",
     .title = "MPEG-2",
     .encoder = "mpeg2video",
     .containers = "mkv mov mp4 mxf avi nut",
     .otherNames = "mpeg-2 m2v",
     .layouts = kMpeg2Layouts,
     .keeps = Keeps::FieldOrder | Keeps::Colors,
     .setOptions = SetMpeg2Options,
     .streamDecides = Keeps::Range,
     .saysDisplayAspect = true,
     .quality = {"quantiser", 1, 28, 2}},
    {.name = "dv",
     .title = "DV",
     .encoder = "dvvideo",
     .containers = "mkv mov mxf avi nut",
     .rule = LayoutRule::DvProfile,
     .keeps = Keeps::FieldOrder,
     .saysDisplayAspect = true,
     .repeats = true},
}};

} // namespace

bool VideoCodec::GoesInto(const Container& container) const noexcept
{
    return container.takesEveryCodec || HasWord(containers, container.name);
}

std::span<const VideoCodec> AllVideoCodecs() noexcept
{
    return kVideoCodecs;
}

const VideoCodec* VideoCodecNamed(std::string_view name) noexcept
{
    return RowNamed<VideoCodec>(kVideoCodecs, name);
}

std::string VideoCodecNames()
{
    return JoinNames(kVideoCodecs, [](const VideoCodec&) { return true; });
}

std::string VideoCodecNames(const Container& container)
{
    return JoinNames(kVideoCodecs, [&](const VideoCodec& codec) { return codec.GoesInto(container); });
}

} // namespace tessel::exporting
