/// One colour as a format stores it. Fills and digits are painted with it.
///
/// Numbers. R'G'B' to Y'CbCr follows ITU-R BT.601-7 (KR 0.299, KB 0.114) and BT.709-6 (KR 0.2126,
/// KB 0.0722): Y' = KR·R' + (1-KR-KB)·G' + KB·B', Cb = (B'-Y')/(2(1-KB)), Cr = (R'-Y')/(2(1-KR)).
/// - Limited range, n bits: Y = round((219·Y'+16)·2^(n-8)), C = round((224·C+128)·2^(n-8)), where
///   round(x) = floor(x+0.5). Nothing is clamped before rounding; after it codes are kept in 1..254 (8 bit)
///   and 4..1019 (10 bit), because the outer codes are timing codes of the serial interfaces.
/// - 8-bit R'G'B' and alpha: round(255·x), kept in 0..255.
/// - Float Y'CbCr: Y' nominally 0..1, Cb and Cr -0.5..0.5, never clamped.
/// - Premultiplied formats multiply the colour by the alpha given, before it is stored and unclamped; for
///   Y'CbCr that scales Y', Cb and Cr, so neutral chroma is the zero. Formats without alpha hold 1.0 or 255.
/// - Linear formats hold the inverse of the BT.709 OETF (V = 4.5·L below β, else α·L^0.45 - (α-1) with
///   α = 1.09929682680944, β = 0.018053968510807), mirrored for negative values; alpha is not touched, and
///   premultiplied ones multiply linear light.
///
/// Precision. Integer codes are those of exact arithmetic on the float components and the standards' decimal
/// coefficients, ties included (grey 0.5 makes 8-bit luma 125.5, hence 126). Float targets are computed in
/// double and rounded once; what would pass the range of float stays at its largest value.
///
/// NaN counts as 0 and an infinity as the largest float of its sign, for every target but plain float R'G'B'.
/// Plain are the non-linear float formats that are not premultiplied: BGRA, ARGB, BGRX and XRGB. They take
/// each component bit for bit (the X formats with alpha 1).
#pragma once

#include "PixelFormatCodes.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pixmill {

/// Blue, green, red, alpha: the layout of code 260.
using ColorBGRA = std::array<float, 4>;

/// What a row filled with a colour consists of, over and over: 16 bytes, which are 4 pixels of an 8-bit 4:4:4
/// format, 1 pixel of a float format, 4 pairs of pixels of a 4:2:2 format (in its own order), or the 6 pixels
/// of a v210 group.
using FillPattern = std::array<std::byte, 16>;

/// A colour ready to be written.
struct StoredColor {
    FillPattern pattern;
};

/// How many pixels share the smallest piece of a format that can be written by itself.
struct PixelGroup {
    std::uint32_t bytes;  ///< 4 or 16
    std::uint32_t pixels; ///< 1; 2 in 4:2:2; 6 in v210
};

/// The group of a paintable format.
[[nodiscard]] constexpr PixelGroup GroupOf(std::uint32_t code) noexcept
{
    if ((code & kBitV210) != 0) {
        return {.bytes = 16, .pixels = 6};
    }
    if ((code & kBit422) != 0) {
        return {.bytes = 4, .pixels = 2};
    }
    return {.bytes = (code & kBitFloat) != 0 ? 16U : 4U, .pixels = 1};
}

/// Converts a colour for the paintable format `code`; of another code the result means nothing.
/// [thread-safe] Costs some tens of nanoseconds, a few hundred where a code lies on a rounding tie.
[[nodiscard]] StoredColor ConvertColor(std::uint32_t code, const ColorBGRA& color) noexcept;

} // namespace pixmill
