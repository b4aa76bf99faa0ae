/// The v210 packing: three 10-bit samples in each little-endian 32-bit word, six pixels in four words:
/// Cb0 Y0 Cr0 | Y1 Cb2 Y2 | Cr2 Y3 Cb4 | Y4 Cr4 Y5.
#pragma once

#include "Picture.h"

#include <cstddef>
#include <cstdint>

namespace tessel::exporting {

/// Unpacks one row: `width` luma samples and (width + 1) / 2 of each chroma. Reads whole groups of 16 bytes.
void UnpackV210Row(const std::byte* packed, std::int32_t width, std::uint16_t* luma, std::uint16_t* cb,
                   std::uint16_t* cr) noexcept;

/// Unpacks as many rows as a picture of three planes (yuv422p10le) has.
/// @param rowBytes  from one packed row to the next; may be negative
void UnpackV210(const std::byte* packed, std::ptrdiff_t rowBytes, const Picture& planes) noexcept;

/// Packs one row into `V210RowBytes(width)` bytes; samples beyond the picture are 0.
void PackV210Row(const std::uint16_t* luma, const std::uint16_t* cb, const std::uint16_t* cr,
                 std::int32_t width, std::byte* packed) noexcept;

/// A v210 picture as files have it: rows of `V210RowBytes`, one after the other, zeros behind the last group of
/// six pixels, whatever the picture's memory holds there.
void CopyV210Rows(const Picture& picture, std::byte* packed) noexcept;

} // namespace tessel::exporting
