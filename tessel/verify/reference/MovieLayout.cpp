#include "MovieLayout.h"

namespace tessel::verify::reference {

std::optional<exporting::PictureLayout> LayoutFor(const read::SampleFormat& format)
{
    using enum exporting::PictureLayout;
    const bool alpha = format.hasAlpha;
    if (format.isFloat) {
        return format.isRgb ? std::optional(alpha ? Gbrapf32 : Gbrpf32) : std::nullopt;
    }
    if (format.isRgb) {
        switch (format.bits) {
        case 8:
            return alpha ? Rgba : Rgb24;
        case 10:
            return alpha ? std::nullopt : std::optional(Gbrp10);
        case 16:
            return alpha ? Rgba64 : Rgb48;
        default:
            return std::nullopt;
        }
    }
    const int chroma = format.chromaShiftX * 10 + format.chromaShiftY;
    if (chroma == 0) {
        switch (format.bits) {
        case 8:
            return alpha ? Yuva444p : Yuv444p;
        case 10:
            return alpha ? Yuva444p10 : Yuv444p10;
        case 16:
            return alpha ? Yuva444p16 : Yuv444p16;
        default:
            return std::nullopt;
        }
    }
    if (alpha) {
        return std::nullopt;
    }
    if (format.bits == 10) {
        return chroma == 10 ? std::optional(Yuv422p10) : chroma == 11 ? std::optional(Yuv420p10) : std::nullopt;
    }
    if (format.bits != 8) {
        return std::nullopt;
    }
    return chroma == 10   ? std::optional(Yuv422p)
           : chroma == 11 ? std::optional(Yuv420p)
           : chroma == 20 ? std::optional(Yuv411p)
                          : std::nullopt;
}

exporting::YCbCrCoding CodingFor(const ClipFacts& clip, const read::PictureFacts& movie)
{
    if (clip.fileKind.family == exporting::ColorFamily::YCbCr) {
        return {clip.fileKind.matrix, false};
    }
    const bool isSaid = movie.matrix != 2 && movie.matrix != 0;
    const bool isClips = clip.matrix != 2 && clip.matrix != 0;
    const int matrix = isSaid ? movie.matrix : isClips ? clip.matrix : 1;
    return {static_cast<exporting::Matrix>(matrix), movie.fullRange.value_or(false)};
}

} // namespace tessel::verify::reference
