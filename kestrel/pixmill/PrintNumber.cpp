#include "PrintNumber.h"

#include "GlyphGeometry.h"
#include "GlyphMasks.h"
#include "NumberInk.h"
#include "PixelFormatCodes.h"
#include "Status.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <exception>

using namespace pixmill;

namespace {

/// A number as glyphs from left to right; ten digits of 2^31 and a sign at most.
struct GlyphText {
    std::array<std::size_t, 11> glyphs{};
    std::uint32_t count = 0;
};

[[nodiscard]] GlyphText TextOf(std::int32_t number) noexcept
{
    GlyphText reversed;
    for (auto rest = static_cast<std::uint64_t>(std::abs(std::int64_t{number}));
         rest != 0 || reversed.count < kLeastDigits; rest /= 10) {
        reversed.glyphs[reversed.count++] = rest % 10;
    }
    if (number < 0) {
        reversed.glyphs[reversed.count++] = kMinusGlyph;
    }
    GlyphText text{.count = reversed.count};
    for (std::uint32_t i = 0; i < text.count; ++i) {
        text.glyphs[i] = reversed.glyphs[text.count - 1 - i];
    }
    return text;
}

/// The picture's rows from its top, whatever their order in memory.
class UprightRows {
public:
    UprightRows(void* pixels, std::int32_t rowBytes, std::uint32_t code, std::uint32_t height) noexcept
        : mTop(static_cast<std::byte*>(pixels)), mStep(rowBytes)
    {
        if (IsBottomRowFirst(code) && rowBytes > 0) {
            mTop += std::ptrdiff_t{rowBytes} * (std::ptrdiff_t{height} - 1);
            mStep = -mStep;
        }
    }

    [[nodiscard]] std::byte* operator[](std::uint32_t row) const noexcept
    {
        return mTop + mStep * std::ptrdiff_t{row};
    }

private:
    std::byte* mTop;
    std::ptrdiff_t mStep;
};

} // namespace

std::int32_t PM_PrintNum(void* pixels, std::int32_t rowBytes, std::uint32_t destCode, std::uint32_t width,
                         std::uint32_t height, std::int32_t number, float textHeight, const float position[2],
                         bool opaque) noexcept
{
    if (pixels == nullptr || position == nullptr || !IsPaintable(destCode)) {
        return kBadArgument;
    }
    const GlyphText text = TextOf(number);
    const NumberLayout layout = LayOutNumber(width, height, text.count, textHeight, position[0], position[1]);
    if (layout.digitHeight == 0) {
        return kDone; // no room for even the smallest digits
    }
    std::array<const GlyphMask*, 11> masks{};
    try {
        for (std::uint32_t i = 0; i < text.count; ++i) {
            masks[i] = &MaskFor(text.glyphs[i], layout);
        }
    } catch (const std::exception&) {
        return kOutOfMemory;
    }

    const NumberInk ink(destCode);
    const UprightRows rows(pixels, rowBytes, destCode, height);
    for (std::uint32_t plateRow = 0; plateRow < layout.height; ++plateRow) {
        std::byte* row = rows[layout.top + plateRow];
        if (opaque) {
            ink.PaintPlate(row, layout.left, layout.width);
        }
        if (plateRow < layout.marginY || plateRow >= layout.marginY + layout.digitHeight) {
            continue;
        }
        for (std::uint32_t i = 0; i < text.count; ++i) {
            const auto runs = masks[i]->Row(plateRow - layout.marginY);
            if (opaque) {
                ink.PaintRuns(row, layout.CellLeft(i), *masks[i], runs);
            } else {
                ink.BlendRuns(row, layout.CellLeft(i), *masks[i], runs);
            }
        }
    }
    return kDone;
}
