/// The image library's pixel-format codes: one bit layout that says how a pixel is stored.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/brindle/PixelFormat.h>

#include <cstdint>

namespace pixmill {

/// Bits of a code. Formats without a top byte can be painted; the others are planar or compressed.
enum FormatBits : std::uint32_t {
    kBitYCbCr = 0x001,         ///< Y'CbCr, else R'G'B'
    kBitSwapped = 0x002,       ///< alpha or luma first: ARGB of BGRA, YUYV of UYVY
    kBitInterleaved4 = 0x004,  ///< four interleaved components per pixel
    kBit8 = 0x008,             ///< 8-bit
    kBit422 = 0x010,           ///< 4:2:2
    kBit420 = 0x020,           ///< 4:2:0; with kBit422: subsampled as the codec has it
    kBitPremultiplied = 0x040, ///< colour multiplied by alpha
    kBitNoAlpha = 0x080,       ///< the alpha component has a place in memory but no meaning
    kBitFloat = 0x100,         ///< 32-bit float
    kBitV210 = 0x200,          ///< 10-bit, three samples to a 32-bit word
    kBitLinear = 0x400,        ///< linear light
    kBit709 = 0x800,           ///< BT.709 matrix, else BT.601
    kKindMask = 0xFF000000,    ///< 0 paintable, 1..4 planar 4:2:0, 9..16 DV
};

inline constexpr std::uint32_t kBGRA8 = kBitInterleaved4 | kBit8;                           // 12
inline constexpr std::uint32_t kBGRAFloat = kBitInterleaved4 | kBitFloat;                   // 260
inline constexpr std::uint32_t kVUYA8_709 = kBitYCbCr | kBitInterleaved4 | kBit8 | kBit709; // 2061
static_assert(kBGRA8 == 12 && kBGRAFloat == 260 && kVUYA8_709 == 2061);

} // namespace pixmill

/// The framework's format to the image library's code; 0 for `Unknown`. [thread-safe]
[[nodiscard]] KESTREL_API std::uint32_t PM_QELPixelFormatToPMPixelFormat(BR::PixelFormat format) noexcept;

/// The way back; `Unknown` for a number that is no format's code. [thread-safe]
[[nodiscard]] KESTREL_API BR::PixelFormat PM_PMPixelFormatToQELPixelFormat(std::uint32_t code) noexcept;

namespace pixmill {

/// Whether rows of pixels can be painted in the format: a known code with a top byte of 0.
[[nodiscard]] KESTREL_API bool IsPaintable(std::uint32_t code) noexcept;

/// Bytes that `width` pixels of a paintable format take in memory (v210: whole groups of 6 pixels in 16
/// bytes; 4:2:2: whole pairs in 4 bytes); 0 for other codes. Padding between rows is not counted.
[[nodiscard]] KESTREL_API std::uint64_t BytesPerRow(std::uint32_t code, std::uint32_t width) noexcept;

/// Whether frames of the format are stored bottom row first: only the host's compositing layout, code 260.
[[nodiscard]] constexpr bool IsBottomRowFirst(std::uint32_t code) noexcept
{
    return code == kBGRAFloat;
}

} // namespace pixmill
