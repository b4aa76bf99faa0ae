/// A host pixel format, taken apart: what a converter and a codec choice need to know of it.
#pragma once

#include <kestrel/brindle/PixelFormat.h>

#include <cstdint>

namespace tessel::exporting {

enum class ColorFamily : std::uint8_t { Rgb, YCbCr };

/// How the samples lie in memory.
enum class Storage : std::uint8_t {
    Interleaved8, ///< four bytes per pixel
    InterleavedF, ///< four 32-bit floats per pixel
    Pairs422,     ///< UYVY or YUYV: four bytes per two pixels
    V210,         ///< six pixels in four little-endian 32-bit words
    Planar420,    ///< a file's layout, never a frame's: frames arrive as 8-bit VUYA 709
    Dv,           ///< a file's layout, never a frame's: frames arrive as 8-bit BGRA or VUYA 709
};

enum class AlphaKind : std::uint8_t { Straight, Premultiplied, None };

/// Matrix codes of ITU-T H.273 that pixel formats can name.
enum class Matrix : std::uint8_t {
    Rgb = 0,
    Bt709 = 1,
    Unspecified = 2,
    Bt470Bg = 5,
    Smpte170M = 6,
    Smpte240M = 7,
    Bt2020 = 9
};

struct PixelKind {
    ColorFamily family = ColorFamily::Rgb;
    Storage storage = Storage::Interleaved8;
    AlphaKind alpha = AlphaKind::None;
    bool swapped = false;      ///< ARGB instead of BGRA, YUYV instead of UYVY
    bool linear = false;       ///< linear light, by the inverse of the BT.709 transfer function
    bool fieldPicture = false; ///< Planar420: chroma is subsampled field by field
    Matrix matrix = Matrix::Rgb;

    [[nodiscard]] bool HasAlpha() const noexcept { return alpha != AlphaKind::None; }
};

/// @throws ExportError  for `Unknown`, which has no pixels.
[[nodiscard]] PixelKind KindOf(BR::PixelFormat format);

} // namespace tessel::exporting
