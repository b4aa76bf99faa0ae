/// Painting runs of pixels and single pixels into a row of any paintable format. [any-thread]
///
/// In 4:2:2 formats and v210 the pixels of an even/odd pair share one pair of chroma samples, which is
/// co-sited with the even pixel (BT.601-7, BT.709-6).
#pragma once

#include "ColorConversion.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace pixmill {

/// Where a sample of a v210 group lies: in the word at byte `offset`, from bit `shift` on. A group is four
/// little-endian words of three 10-bit samples.
struct V210Place {
    std::uint8_t offset, shift;
};
/// The luma of a group's six pixels.
inline constexpr std::array<V210Place, 6> kV210Luma{{{0, 10}, {4, 0}, {4, 20}, {8, 10}, {12, 0}, {12, 20}}};
inline constexpr std::uint32_t kV210Mask = 0x3FF;

[[nodiscard]] inline std::uint32_t LoadWord(const std::byte* bytes) noexcept
{
    std::uint32_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

inline void StoreWord(std::byte* bytes, std::uint32_t word) noexcept
{
    std::memcpy(bytes, &word, sizeof word);
}

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
