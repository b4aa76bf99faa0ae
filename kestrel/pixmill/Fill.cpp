#include "Fill.h"

#include "CodeTable.h"
#include "ColorConversion.h"
#include "FillRow.h"
#include "IntegerConversion.h"
#include "Status.h"

#include <bit>
#include <cstddef>
#include <cstring>

using namespace pixmill;

namespace {

/// How far ahead of the stores a run of rows is prefetched. 1 to 16 KiB are equally fast (measured).
constexpr std::ptrdiff_t kAheadInRun = 4096;

struct __attribute__((packed, may_alias)) UnalignedFloat {
    float value;
};

/// Callers have only just stored a colour, component by component. One wide load of all four, which is what
/// the compilers make of plain reads, would wait until those stores, and the whole row stored before them, had
/// reached the cache: half the time of a short row. Hence the volatile.
ColorBGRA LoadColor(const void* color) noexcept
{
    const auto* const components = static_cast<const volatile UnalignedFloat*>(color);
    return {components[0].value, components[1].value, components[2].value, components[3].value};
}

/// Writes the samples of an incomplete last group that pixels use, and 0 in the others.
void FillLastGroup(std::byte* group, std::uint32_t code, std::uint32_t pixels, FillWords pattern) noexcept
{
    const auto bytes = std::bit_cast<FillPattern>(pattern);
    if ((code & kBitV210) == 0) {
        // One pixel of a pair: its luma and the pair's chroma.
        std::memcpy(group, bytes.data(), 4);
        group[(code & kBitSwapped) != 0 ? 2 : 3] = std::byte{0};
        return;
    }
    // Samples of a group in the order of its words' fields: Cb Y Cr Y Cb Y Cr Y Cb Y Cr Y. Pixels 0, 2 and 4
    // bring three of them, the others one.
    const std::uint32_t samples = pixels * 2 + pixels % 2;
    for (std::uint32_t word = 0; word < 4; ++word) {
        std::uint32_t value = 0;
        std::memcpy(&value, bytes.data() + std::size_t{word} * 4, 4);
        const std::uint32_t used = samples > word * 3 ? samples - word * 3 : 0;
        if (used < 3) {
            value &= (1U << (10 * used)) - 1;
        }
        std::memcpy(group + std::size_t{word} * 4, &value, 4);
    }
}

void FillRows(std::byte* pixels, std::ptrdiff_t rowBytes, std::uint32_t width, std::uint32_t rows,
              std::uint32_t code, FillWords pattern) noexcept
{
    const PixelGroup group = GroupOf(code);
    const std::size_t wholeBytes = std::size_t{width / group.pixels} * group.bytes;
    const std::uint32_t lastPixels = width % group.pixels;
    if (lastPixels == 0 && static_cast<std::ptrdiff_t>(wholeBytes) == rowBytes) {
        FillRow(pixels, wholeBytes * rows, pattern, kAheadInRun);
        return;
    }
    FillSeparateRows(pixels, rowBytes, wholeBytes, rows, pattern);
    for (std::uint32_t i = 0; lastPixels != 0 && i < rows; ++i) {
        FillLastGroup(pixels + static_cast<std::ptrdiff_t>(i) * rowBytes + wholeBytes, code, lastPixels,
                      pattern);
    }
}

[[gnu::noinline]] std::int32_t FillAnyRows(std::byte* pixels, std::ptrdiff_t rowBytes, std::uint32_t width,
                                           std::uint32_t rows, std::uint32_t code, const void* color) noexcept
{
    const StoredColor stored = ConvertColor(code, LoadColor(color));
    FillRows(pixels, rowBytes, width, rows, code, std::bit_cast<FillWords>(stored.pattern));
    return kDone;
}

[[gnu::noinline]] std::int32_t FillOneRowExactly(std::byte* row, std::size_t byteCount, std::uint32_t code,
                                                 const void* color, std::ptrdiff_t ahead) noexcept
{
    FillRow(row, byteCount, std::bit_cast<FillWords>(ConvertColor(code, LoadColor(color)).pattern), ahead);
    return kDone;
}

/// A gradient is filled row by row. A short row takes so little time that stores to the stack can be measured:
/// they wait behind the row's own. Hence few arguments, and calls only at the ends.
[[gnu::noinline]] std::int32_t FillOneRow(std::byte* row, std::size_t byteCount, std::uint32_t code,
                                          const void* color, std::ptrdiff_t ahead) noexcept
{
    FillWords pattern{};
    if (!ConvertQuickly(code, LoadColor(color), pattern)) [[unlikely]] {
        return FillOneRowExactly(row, byteCount, code, color, ahead);
    }
    FillRow(row, byteCount, pattern, ahead);
    return kDone;
}

} // namespace

std::int32_t PM_FillWithColor(void* pixels, std::int32_t rowBytes, std::uint32_t width, std::uint32_t rows,
                              std::uint32_t destCode, const void* color, std::uint32_t colorCode) noexcept
{
    if (pixels == nullptr || color == nullptr || colorCode != kBGRAFloat || !IsInPaintableTable(destCode)) {
        return kBadArgument;
    }
    auto* const bytes = static_cast<std::byte*>(pixels);
    const PixelGroup group = GroupOf(destCode);
    if (rows != 1 || width % group.pixels != 0) {
        return FillAnyRows(bytes, rowBytes, width, rows, destCode, color);
    }
    const std::size_t byteCount = std::size_t{width / group.pixels} * group.bytes;
    const bool isFloat = (destCode & kBitFloat) != 0;
    return (isFloat ? FillOneRowExactly : FillOneRow)(bytes, byteCount, destCode, color, rowBytes);
}
