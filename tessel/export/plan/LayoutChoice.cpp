#include "LayoutChoice.h"

#include "DvProfiles.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <span>

namespace tessel::exporting {
namespace {

using document::ClipFacts;
using importhost::FieldOrder;
using Layouts = std::span<const PictureLayout>;

/// The samples of a clip's format, before anything is made of them.
struct Samples {
    ColorFamily family = ColorFamily::Rgb;
    int bits = 8; ///< 32: float
    int chromaShiftX = 0;
    int chromaShiftY = 0;
    bool hasAlpha = false;
    PictureLayout inMemory = PictureLayout::V210; ///< where frames are stored in a layout of pictures, that one
};

Samples SamplesOf(const PixelKind& kind) noexcept
{
    Samples samples;
    samples.family = kind.family;
    samples.hasAlpha = kind.HasAlpha();
    switch (kind.storage) {
    case Storage::Interleaved8:
        if (kind.family == ColorFamily::Rgb && kind.HasAlpha()) {
            samples.inMemory = kind.swapped ? PictureLayout::Argb : PictureLayout::Bgra;
        } else if (kind.family == ColorFamily::Rgb) {
            samples.inMemory = kind.swapped ? PictureLayout::Zrgb : PictureLayout::Bgr0;
        }
        break;
    case Storage::InterleavedF:
        samples.bits = 32;
        break;
    case Storage::Pairs422:
        samples.chromaShiftX = 1;
        samples.inMemory = kind.swapped ? PictureLayout::Yuyv : PictureLayout::Uyvy;
        break;
    case Storage::V210:
        samples.bits = 10;
        samples.chromaShiftX = 1;
        break;
    case Storage::Planar420:
        samples.chromaShiftX = 1;
        samples.chromaShiftY = 1;
        break;
    case Storage::Dv: // in codecs that have not all of its samplings
        samples.chromaShiftX = 1;
        break;
    }
    return samples;
}

/// What a layout loses of the samples, the worst first, then what it wastes: the least is the best.
std::array<int, 8> CostOf(PictureLayout candidate, const Samples& samples) noexcept
{
    const LayoutInfo& layout = InfoOf(candidate);
    const int lostBits = std::max(samples.bits - layout.bits, 0);
    const int lostX = std::max(layout.chromaShiftX - samples.chromaShiftX, 0);
    const int lostY = std::max(layout.chromaShiftY - samples.chromaShiftY, 0);
    const int spareX = std::max(samples.chromaShiftX - layout.chromaShiftX, 0);
    const int spareY = std::max(samples.chromaShiftY - layout.chromaShiftY, 0);
    return {layout.family == samples.family ? 0 : 1,
            lostBits,
            lostX + lostY,
            samples.hasAlpha && !layout.HasAlpha() ? 1 : 0,
            candidate == samples.inMemory ? 0 : 1,
            layout.HasAlpha() && !samples.hasAlpha ? 1 : 0,
            std::max(layout.bits - samples.bits, 0),
            spareX + spareY};
}

/// The layout of the least cost, the first of several.
PictureLayout KeepMost(Layouts layouts, const ClipFacts& clip, const PixelKind& kind) noexcept
{
    // DV has samplings of its own. Codecs that have all of them keep them; others take it as 4:2:2.
    if (const DvProfile* dv = DvProfileOf(clip.pixelFormat);
        dv != nullptr && std::find(layouts.begin(), layouts.end(), PictureLayout::Yuv411p) != layouts.end()) {
        return dv->layout;
    }
    const Samples samples = SamplesOf(kind);
    return *std::min_element(layouts.begin(), layouts.end(), [&](PictureLayout left, PictureLayout right) {
        return CostOf(left, samples) < CostOf(right, samples);
    });
}

/// 4:2:0 plays everywhere, but pairs columns and rows: rows of the picture or, interlaced, of each field.
PictureLayout ChoosePlayable(const VideoCodec& codec, const ClipFacts& clip, const PixelKind& kind)
{
    const bool pairsFields = codec.codesFields && clip.Order() != FieldOrder::Progressive;
    if (pairsFields && clip.height % 2 != 0) {
        throw ExportError(fmt::format(
            "{} has no interlaced pictures of {} rows: make mFrameHeight even or mFieldType 0, or choose "
            "a codec that has, such as ffv1 in mkv",
            codec.title, clip.height));
    }
    const auto fits = [&](PictureLayout layout) {
        const std::int32_t columns = 1 << InfoOf(layout).chromaShiftX;
        const std::int32_t rows = (1 << InfoOf(layout).chromaShiftY) * (pairsFields ? 2 : 1);
        return clip.width % columns == 0 && (InfoOf(layout).chromaShiftY == 0 || clip.height % rows == 0);
    };
    // Deep enough for the clip, no deeper, and then the first.
    const int bits = SamplesOf(kind).bits;
    const auto cost = [&](PictureLayout layout) {
        const int difference = InfoOf(layout).bits - bits;
        return std::array<int, 3>{fits(layout) ? 0 : 1, std::max(-difference, 0), std::max(difference, 0)};
    };
    return *std::min_element(codec.layouts.begin(), codec.layouts.end(),
                             [&](PictureLayout left, PictureLayout right) { return cost(left) < cost(right); });
}

} // namespace

PictureLayout ChooseLayout(const VideoCodec& codec, const Container& container, const ClipFacts& clip,
                           const PixelKind& kind)
{
    switch (codec.rule) {
    case LayoutRule::KeepSamples:
        break;
    case LayoutRule::KeepRaw:
        return KeepMost(container.rawLayouts, clip, kind);
    case LayoutRule::Playable:
        return ChoosePlayable(codec, clip, kind);
    case LayoutRule::DvProfile:
        return DvProfileFor(clip).layout;
    }
    const PictureLayout layout = KeepMost(codec.layouts, clip, kind);
    const bool isOpaqueAndOdd =
        !InfoOf(layout).HasAlpha() && !codec.opaqueEncoder.empty() && clip.width % 2 != 0;
    return isOpaqueAndOdd ? codec.layouts.front() : layout;
}

} // namespace tessel::exporting
