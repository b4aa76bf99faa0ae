#include "VideoPlan.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <numeric>

namespace tessel::exporting {
namespace {

using importhost::ClipDescription;
using importhost::FieldOrder;

/// The codec that keeps the clip's own format where the container can.
VideoCodec DefaultCodec(const PixelKind& kind, Container container) noexcept
{
    if (const ContainerInfo& info = InfoOf(container); info.videoCodecs.size() == 1) {
        return info.videoCodecs.front();
    }
    if (container == Container::Mp4) {
        return VideoCodec::H264;
    }
    if (kind.storage == Storage::Dv) {
        return VideoCodec::Dv;
    }
    if (container == Container::Mxf) {
        return VideoCodec::Mpeg2;
    }
    switch (kind.storage) {
    case Storage::V210:
        return VideoCodec::V210;
    case Storage::Pairs422:
        return VideoCodec::Raw;
    default:
        break;
    }
    switch (container) {
    case Container::Nut:
        return VideoCodec::Raw;
    case Container::Mov:
        if (kind.storage == Storage::Planar420) {
            return VideoCodec::Raw;
        }
        if (kind.storage == Storage::InterleavedF) {
            return VideoCodec::ProRes;
        }
        return kind.family == ColorFamily::Rgb ? VideoCodec::Png : VideoCodec::V408;
    default:
        return VideoCodec::Ffv1;
    }
}

/// Either layout, by whether the clip's format has alpha.
PictureLayout ByAlpha(const PixelKind& kind, PictureLayout with, PictureLayout without) noexcept
{
    return kind.HasAlpha() ? with : without;
}

/// Layouts that hold every sample of the format, or for float the finest integers there are.
PictureLayout LosslessPlanes(const PixelKind& kind, const DvProfile* dv) noexcept
{
    const bool isRgb = kind.family == ColorFamily::Rgb;
    switch (kind.storage) {
    case Storage::Interleaved8:
        return isRgb ? ByAlpha(kind, PictureLayout::Bgra, PictureLayout::Bgr0)
                     : ByAlpha(kind, PictureLayout::Yuva444p, PictureLayout::Yuv444p);
    case Storage::InterleavedF:
        return isRgb ? ByAlpha(kind, PictureLayout::Gbrap16, PictureLayout::Gbrp16)
                     : ByAlpha(kind, PictureLayout::Yuva444p16, PictureLayout::Yuv444p16);
    case Storage::Pairs422:
        return PictureLayout::Yuv422p;
    case Storage::V210:
        return PictureLayout::Yuv422p10;
    case Storage::Planar420:
        return PictureLayout::Yuv420p;
    case Storage::Dv:
        break;
    }
    return dv != nullptr ? dv->layout : PictureLayout::Yuv422p;
}

PictureLayout RawLayout(const PixelKind& kind, Container container, const DvProfile* dv) noexcept
{
    const bool isAnyRgb8 = kind.family == ColorFamily::Rgb && kind.storage == Storage::Interleaved8;
    if (container == Container::Y4m) {
        if (isAnyRgb8 || (kind.family == ColorFamily::YCbCr && kind.storage == Storage::Interleaved8)) {
            return PictureLayout::Yuv444p;
        }
        return kind.storage == Storage::InterleavedF ? PictureLayout::Yuv444p16 : LosslessPlanes(kind, dv);
    }
    if (kind.storage == Storage::Pairs422) {
        return kind.swapped ? PictureLayout::Yuyv : PictureLayout::Uyvy;
    }
    if (container == Container::Mov || container == Container::Avi) {
        // These two name raw layouts by codes that readers know only a few of.
        if (kind.family == ColorFamily::Rgb) {
            return PictureLayout::Bgra;
        }
        return kind.storage == Storage::Planar420 || kind.storage == Storage::Dv ? LosslessPlanes(kind, dv)
                                                                                 : PictureLayout::Uyvy;
    }
    if (isAnyRgb8 && kind.swapped) {
        return ByAlpha(kind, PictureLayout::Argb, PictureLayout::Zrgb);
    }
    return LosslessPlanes(kind, dv);
}

/// Whether 8 bits a sample are all that the clip's format has.
bool IsEightBit(const PixelKind& kind) noexcept
{
    return kind.storage != Storage::InterleavedF && kind.storage != Storage::V210;
}

/// 4:2:0 plays everywhere, but pairs columns and rows: rows of the picture or, interlaced, of each field.
PictureLayout H264Layout(const ClipDescription& clip)
{
    const bool isInterlaced = clip.Order() != FieldOrder::Progressive;
    if (isInterlaced && clip.height % 2 != 0) {
        throw ExportError(fmt::format(
            "H.264 has no interlaced pictures of {} rows: make mFrameHeight even or mFieldType 0, or choose "
            "a codec that has, such as ffv1 in mkv",
            clip.height));
    }
    const std::int32_t rows = isInterlaced ? 4 : 2;
    return clip.width % 2 == 0 && clip.height % rows == 0 ? PictureLayout::Yuv420p : PictureLayout::Yuv444p;
}

PictureLayout LayoutFor(VideoCodec codec, const ClipDescription& clip, const PixelKind& kind,
                        Container container)
{
    const DvProfile* dv = DvProfileOf(clip.pixelFormat);
    switch (codec) {
    case VideoCodec::Ffv1:
        return LosslessPlanes(kind, dv);
    case VideoCodec::Raw:
        return RawLayout(kind, container, dv);
    case VideoCodec::V210:
        return PictureLayout::V210;
    case VideoCodec::V408:
        // v308, the one without alpha, has even widths only; v408 then holds an opaque one.
        return clip.width % 2 == 0 ? ByAlpha(kind, PictureLayout::Yuva444p, PictureLayout::Yuv444p)
                                   : PictureLayout::Yuva444p;
    case VideoCodec::ProRes:
        if (kind.storage == Storage::Interleaved8 || kind.storage == Storage::InterleavedF) {
            return ByAlpha(kind, PictureLayout::Yuva444p10, PictureLayout::Yuv444p10);
        }
        return PictureLayout::Yuv422p10;
    case VideoCodec::Png:
        return IsEightBit(kind) ? ByAlpha(kind, PictureLayout::Rgba, PictureLayout::Rgb24)
                                : ByAlpha(kind, PictureLayout::Rgba64be, PictureLayout::Rgb48be);
    case VideoCodec::Tiff:
        return IsEightBit(kind) ? ByAlpha(kind, PictureLayout::Rgba, PictureLayout::Rgb24)
                                : ByAlpha(kind, PictureLayout::Rgba64, PictureLayout::Rgb48);
    case VideoCodec::Dpx:
        if (kind.storage == Storage::V210) {
            return PictureLayout::Gbrp10;
        }
        return IsEightBit(kind) ? ByAlpha(kind, PictureLayout::Rgba, PictureLayout::Rgb24)
                                : ByAlpha(kind, PictureLayout::Rgba64be, PictureLayout::Rgb48be);
    case VideoCodec::Exr:
        return ByAlpha(kind, PictureLayout::Gbrapf32, PictureLayout::Gbrpf32);
    case VideoCodec::H264:
        return H264Layout(clip);
    case VideoCodec::Mpeg2:
        return kind.storage == Storage::Planar420 ? PictureLayout::Yuv420p : PictureLayout::Yuv422p;
    case VideoCodec::Dv:
        return DvProfileFor(clip).layout;
    }
    return PictureLayout::Bgra;
}

/// The format in which the plug-in paints frames of a clip's format.
BR::PixelFormat FrameFormat(BR::PixelFormat format, const PixelKind& kind) noexcept
{
    if (kind.storage == Storage::Planar420) {
        return BR::PixelFormat::VUYA_4444_8u_709;
    }
    if (kind.storage == Storage::Dv) {
        return kind.matrix == Matrix::Bt709 ? BR::PixelFormat::VUYA_4444_8u_709 : BR::PixelFormat::BGRA_4444_8u;
    }
    return format;
}

/// The ranges of codes that R'G'B' may become: what the file announces and its readers heed.
CodeRanges RangesOf(VideoCodec codec, Container container) noexcept
{
    // H.264 says its range in its own stream, Y4M in its header. The others that turn R'G'B' into Y'CbCr (v210,
    // v408, ProRes, MPEG-2, DV) are limited to their readers, whatever some containers say beside it; full
    // range would even use v210's timing codes.
    const bool saysRange = codec == VideoCodec::H264 || container == Container::Y4m;
    return saysRange ? CodeRanges::LimitedAndFull : CodeRanges::OnlyLimited;
}

/// How the clip's pictures are coded where the target is Y'CbCr.
YCbCrCoding CodingOf(const ClipDescription& clip, const PixelKind& kind, VideoCodec codec, Container container)
{
    if (kind.family != ColorFamily::Rgb) {
        return {kind.matrix};
    }
    if (codec == VideoCodec::Dv) {
        // DV streams do not say their matrix: decoders go by the profile.
        return {DvProfileFor(clip).matrix};
    }
    return CodingFor(clip.colorCodes, RangesOf(codec, container));
}

PictureGeometry GeometryOf(const ClipDescription& clip)
{
    if (clip.width < 1 || clip.height < 1) {
        throw ExportError(fmt::format("the clip has no picture: its frames are {}x{}, but \"mFrameWidth\" and "
                                      "\"mFrameHeight\" must be 1 or more; use --audio-only for its sound",
                                      clip.width, clip.height));
    }
    RequireRate(clip);
    const std::int32_t divisor = std::gcd(clip.timeScale, clip.sampleSize);
    PictureGeometry geometry;
    geometry.width = clip.width;
    geometry.height = clip.height;
    geometry.rateNumerator = clip.timeScale / divisor;
    geometry.rateDenominator = clip.sampleSize / divisor;
    geometry.order = clip.Order();

    const std::uint32_t numerator = clip.pixelAspect.GetNumerator();
    const std::uint32_t denominator = clip.pixelAspect.GetDenominator();
    if (numerator != 0 && denominator != 0) {
        const std::uint32_t common = std::gcd(numerator, denominator);
        constexpr std::uint32_t kHighest = 0x7FFFFFFF;
        if (numerator / common <= kHighest && denominator / common <= kHighest) {
            geometry.aspectNumerator = static_cast<std::int32_t>(numerator / common);
            geometry.aspectDenominator = static_cast<std::int32_t>(denominator / common);
        }
    }
    return geometry;
}

} // namespace

void RequireRate(const ClipDescription& clip)
{
    if (clip.timeScale < 1 || clip.sampleSize < 1) {
        // 254016000000 ticks a second / 25
        throw ExportError("the clip has no frame rate: \"ticksperframe\" of \"mVideoFrameRate\" must be a "
                          "positive number of ticks, such as 10160640000 for 25 frames per second");
    }
}

VideoPlan PlanVideo(const ClipDescription& clip, Container container, std::optional<VideoCodec> chosen)
{
    const PixelKind kind = KindOf(clip.pixelFormat);

    VideoPlan plan;
    plan.geometry = GeometryOf(clip);
    plan.codec = chosen.value_or(DefaultCodec(kind, container));
    const PictureLayout layout = LayoutFor(plan.codec, clip, kind, container);
    plan.conversion.source = FrameFormat(clip.pixelFormat, kind);
    plan.conversion.target = layout;
    plan.conversion.width = clip.width;
    plan.conversion.height = clip.height;
    plan.conversion.coding = CodingOf(clip, kind, plan.codec, container);
    const bool byField =
        kind.storage == Storage::Planar420 ? kind.fieldPicture : plan.geometry.order != FieldOrder::Progressive;
    plan.conversion.chromaRows = byField ? ChromaRows::Field : ChromaRows::Frame;
    plan.tags = TagsFor(kind, clip.colorCodes, InfoOf(layout), plan.conversion.coding);
    return plan;
}

} // namespace tessel::exporting
