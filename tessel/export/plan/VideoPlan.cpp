#include "VideoPlan.h"

#include "ClipConversion.h"
#include "DvProfiles.h"
#include "LayoutChoice.h"

#include <tessel/document/SettingHint.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace tessel::exporting {
namespace {

using document::ClipFacts;
using document::Setting;
using importhost::FieldOrder;

/// The codec that keeps the clip's own format where the container can.
const VideoCodec& DefaultCodec(const PixelKind& kind, const Container& container) noexcept
{
    const DefaultVideoCodecs& codecs = container.videoCodecs;
    const bool isRgb = kind.family == ColorFamily::Rgb;
    std::string_view name;
    switch (kind.storage) {
    case Storage::Interleaved8:
        name = isRgb ? codecs.rgb8 : codecs.ycbcr8;
        break;
    case Storage::InterleavedF:
        name = isRgb ? codecs.rgbFloat : codecs.ycbcrFloat;
        break;
    case Storage::Pairs422:
        name = codecs.pairs422;
        break;
    case Storage::V210:
        name = codecs.v210;
        break;
    case Storage::Planar420:
        name = codecs.planar420;
        break;
    case Storage::Dv:
        name = codecs.dv;
        break;
    }
    return *VideoCodecNamed(name); // a test holds that every name of the table is a codec's
}

/// The ranges of codes that R'G'B' may become: what the file announces and its readers heed.
CodeRanges RangesOf(const VideoCodec& codec, const Container& container) noexcept
{
    // Codecs that say no range in their own stream (v210, v408, ProRes, MPEG-2, DV) are limited to their
    // readers, whatever some containers say beside it; full range would even use v210's timing codes. Raw
    // pictures have what their container says.
    const Keeps says = codec.rule == LayoutRule::KeepRaw ? container.keeps : codec.keeps;
    return Holds(says, Keeps::Range) ? CodeRanges::LimitedAndFull : CodeRanges::OnlyLimited;
}

/// The coding that a codec has whatever the clip's is.
std::optional<YCbCrCoding> FixedCoding(const ClipFacts& clip, const PixelKind& kind, const VideoCodec& codec)
{
    if (kind.family != ColorFamily::Rgb) {
        return std::nullopt;
    }
    if (codec.rule == LayoutRule::DvProfile) {
        // DV streams do not say their matrix: decoders go by the profile.
        return YCbCrCoding{DvProfileFor(clip).matrix};
    }
    if (codec.isFullRange) {
        return YCbCrCoding{Matrix::Bt470Bg, true};
    }
    return std::nullopt;
}

ChromaPlace PlaceOfChroma(const VideoCodec& codec, const LayoutInfo& layout) noexcept
{
    if (layout.chromaShiftX == 0) {
        return ChromaPlace::Unspecified;
    }
    // Intended: DV defines where its chroma lies, so its streams announce that, whatever the filter is.
    return layout.chromaShiftY == 0 || codec.rule == LayoutRule::DvProfile ? ChromaPlace::OnRow
                                                                           : ChromaPlace::BetweenRows;
}

std::string_view TagOf(const VideoCodec& codec, const Container& container, PictureLayout layout) noexcept
{
    if (codec.rule == LayoutRule::KeepRaw) {
        for (const RawTag& tag : container.rawTags) {
            if (tag.layout == layout) {
                return tag.tag;
            }
        }
    }
    return container.isQuickTime ? codec.quickTimeTag : std::string_view{};
}

} // namespace

EncoderOptions OptionsOf(const VideoPlan& plan)
{
    EncoderOptions options;
    if (plan.codec->setOptions != nullptr) {
        plan.codec->setOptions(plan, options);
    }
    if (plan.codec->codesFields && plan.geometry.order != FieldOrder::Progressive) {
        options.flags += "+ildct+ilme";
    }
    return options;
}

void RequireRate(const ClipFacts& clip)
{
    if (clip.timeScale < 1 || clip.sampleSize < 1) {
        throw ExportError(fmt::format("the clip has no frame rate{}", SettingHint(clip, Setting::FrameRate)));
    }
}

void CheckQuality(const VideoCodec& codec, int quality)
{
    const QualityScale& scale = codec.quality;
    if (scale.name.empty()) {
        std::string others;
        for (const VideoCodec& other : AllVideoCodecs()) {
            if (!other.quality.name.empty()) {
                others += (others.empty() ? "" : ", ") + std::string(other.name);
            }
        }
        throw RequestError(
            fmt::format("{} has one quality only: remove --quality, or choose one of {}", codec.name, others));
    }
    const auto [least, most] = std::minmax(scale.best, scale.worst);
    if (quality < least || quality > most) {
        throw RequestError(
            fmt::format("--quality {} is not known to {}: its {} is a number from {} (best) to {}", quality,
                        codec.name, scale.name, scale.best, scale.worst));
    }
}

void RequirePicture(const ClipFacts& clip)
{
    if (clip.width < 1 || clip.height < 1) {
        throw ExportError(
            fmt::format("the clip has no picture, its frames are {}x{}{}; use --audio-only for its sound",
                        clip.width, clip.height, SettingHint(clip, Setting::FrameSize)));
    }
    RequireRate(clip);
}

VideoPlan PlanVideo(const ClipFacts& clip, const Container& container, const VideoCodec* chosen,
                    std::optional<int> quality)
{
    RequirePicture(clip);
    VideoPlan plan;
    plan.geometry = GeometryOf(clip);
    const PixelKind kind = KindToKeep(clip);
    const VideoCodec& codec = chosen != nullptr ? *chosen : DefaultCodec(kind, container);
    plan.codec = &codec;
    if (quality) {
        CheckQuality(codec, *quality);
        plan.quality = quality;
    } else if (!codec.quality.name.empty()) {
        plan.quality = codec.quality.usual;
    }
    plan.conversion =
        ConversionOf(clip, kind, ChooseLayout(codec, container, clip, kind), RangesOf(codec, container));
    plan.conversion.coding = FixedCoding(clip, kind, codec).value_or(plan.conversion.coding);
    const LayoutInfo& layout = InfoOf(plan.conversion.target);
    plan.tags = TagsFor(kind, clip.colorCodes, layout, plan.conversion.coding);
    plan.chromaPlace = PlaceOfChroma(codec, layout);
    plan.encoder = layout.HasAlpha() || codec.opaqueEncoder.empty() ? codec.encoder : codec.opaqueEncoder;
    plan.headersOutOfBand = container.headersOutOfBand;
    plan.tag = TagOf(codec, container, plan.conversion.target);
    plan.rawWriter = container.rawWriter;
    plan.options = OptionsOf(plan);
    return plan;
}

} // namespace tessel::exporting
