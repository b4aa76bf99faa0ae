#include "ClipConversion.h"

namespace tessel::exporting {

using importhost::FieldOrder;

PixelKind KindToKeep(const document::ClipFacts& clip)
{
    if (clip.pixelFormat != BR::PixelFormat::Unknown) {
        const PixelKind named = KindOf(clip.pixelFormat);
        if (named.storage == Storage::Planar420 || named.storage == Storage::Dv) {
            return named;
        }
    }
    return KindOf(clip.frameFormat);
}

Conversion ConversionOf(const document::ClipFacts& clip, const PixelKind& kind, PictureLayout target,
                        CodeRanges ranges) noexcept
{
    const bool isRgb = kind.family == ColorFamily::Rgb;
    const bool byField =
        kind.storage == Storage::Planar420 ? kind.fieldPicture : clip.Order() != FieldOrder::Progressive;
    return {.source = clip.frameFormat,
            .target = target,
            .width = clip.width,
            .height = clip.height,
            .coding = isRgb ? CodingFor(clip.colorCodes, ranges) : YCbCrCoding{kind.matrix},
            .chromaRows = byField ? ChromaRows::Field : ChromaRows::Frame};
}

} // namespace tessel::exporting
