/// Painting runs of pixels and single pixels into a row of any paintable format. [any-thread]
///
/// In 4:2:2 formats and v210 the pixels of an even/odd pair share one pair of chroma samples, which is
/// co-sited with the even pixel (BT.601-7, BT.709-6).
#pragma once

#include "ColorConversion.h"

#include <cstddef>
#include <cstdint>

namespace pixmill {

/// Paints the pixels x .. x+count-1 of a row. In subsampled formats every pair that the span touches gets the
/// colour's chroma, and other pixels of the pair keep their luma.
///
/// @param row    First byte of the row's pixel 0; borrowed, any alignment.
/// @param code   A paintable format.
/// @param color  Made by `ConvertColor` for the same format.
void PaintSpan(std::byte* row, std::uint32_t code, std::uint32_t x, std::uint32_t count,
               const StoredColor& color) noexcept;

/// Mixes a colour into one pixel, in the numbers that the format stores:
/// sample = old + (new - old)·coverage, integers rounded to nearest. In subsampled formats chroma is mixed by
/// the even pixel of a pair only.
///
/// @param coverage  0 leaves the pixel as it is, 1 paints it; values outside count as 0 and 1, NaN as 0.
void BlendPixel(std::byte* row, std::uint32_t code, std::uint32_t x, const StoredColor& color,
                float coverage) noexcept;

} // namespace pixmill
