#include "Fill.h"

#include "ColorConversion.h"
#include "FillRow.h"
#include "PixelFormatCodes.h"

#include <cstddef>
#include <cstring>

using namespace pixmill;

namespace {

constexpr std::int32_t kFilled = 0;
constexpr std::int32_t kBadArgument = -1;

/// Writes the samples of an incomplete last group that pixels use, and 0 in the others.
void FillLastGroup(std::byte* group, std::uint32_t code, std::uint32_t pixels,
                   const StoredColor& color) noexcept
{
    if ((code & kBitV210) == 0) {
        // One pixel of a pair: its luma and the pair's chroma.
        std::memcpy(group, color.pattern.data(), 4);
        group[(code & kBitSwapped) != 0 ? 2 : 3] = std::byte{0};
        return;
    }
    // Samples of a group in the order of its words' fields: Cb Y Cr Y Cb Y Cr Y Cb Y Cr Y. Pixels 0, 2 and 4
    // bring three of them, the others one.
    const std::uint32_t samples = pixels * 2 + pixels % 2;
    for (std::uint32_t word = 0; word < 4; ++word) {
        std::uint32_t value = 0;
        std::memcpy(&value, color.pattern.data() + std::size_t{word} * 4, 4);
        const std::uint32_t used = samples > word * 3 ? samples - word * 3 : 0;
        if (used < 3) {
            value &= (1U << (10 * used)) - 1;
        }
        std::memcpy(group + std::size_t{word} * 4, &value, 4);
    }
}

} // namespace

std::int32_t PM_FillWithColor(void* pixels, std::int32_t rowBytes, std::uint32_t width, std::uint32_t rows,
                              std::uint32_t destCode, const void* color, std::uint32_t colorCode) noexcept
{
    if (pixels == nullptr || color == nullptr || colorCode != kBGRAFloat || !IsPaintable(destCode)) {
        return kBadArgument;
    }
    ColorBGRA given;
    std::memcpy(given.data(), color, sizeof(given));
    const StoredColor stored = ConvertColor(destCode, given);
    const PixelGroup group = GroupOf(destCode);
    const std::size_t wholeBytes = std::size_t{width / group.pixels} * group.bytes;
    const std::uint32_t lastPixels = width % group.pixels;

    auto* row = static_cast<std::byte*>(pixels);
    for (std::uint32_t i = 0; i < rows; ++i) {
        std::byte* const at = row + static_cast<std::ptrdiff_t>(i) * rowBytes;
        FillRow(at, wholeBytes, stored.pattern);
        if (lastPixels != 0) {
            FillLastGroup(at + wholeBytes, destCode, lastPixels, stored);
        }
    }
    return kFilled;
}
