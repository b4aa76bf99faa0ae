#include "PixelSpans.h"

#include "FillRow.h"

#include <kestrel/qelmediatypes/Saturating.h>

#include <algorithm>
#include <cstring>

namespace pixmill {
namespace {

// The chroma of a v210 group's three pairs.
constexpr std::array<V210Place, 3> kV210BlueChroma = {{{0, 0}, {4, 10}, {8, 20}}};
constexpr std::array<V210Place, 3> kV210RedChroma = {{{0, 20}, {8, 0}, {12, 10}}};

std::uint32_t Mixed(std::uint32_t old, std::uint32_t wanted, float coverage) noexcept
{
    const double from = old;
    return qelmediatypes::SaturatingCast<std::uint32_t>(from + (wanted - from) * coverage + 0.5);
}

void MixV210(std::byte* group, V210Place place, const StoredColor& color, float coverage) noexcept
{
    const std::uint32_t word = LoadWord(group + place.offset);
    const std::uint32_t wanted = LoadWord(color.pattern.data() + place.offset) >> place.shift & kV210Mask;
    const std::uint32_t mixed = Mixed(word >> place.shift & kV210Mask, wanted, coverage);
    StoreWord(group + place.offset, (word & ~(kV210Mask << place.shift)) | mixed << place.shift);
}

void MixByte(std::byte& sample, std::byte wanted, float coverage) noexcept
{
    sample = static_cast<std::byte>(
        Mixed(std::to_integer<std::uint32_t>(sample), std::to_integer<std::uint32_t>(wanted), coverage));
}

void MixFloat(std::byte* sample, const std::byte* wanted, float coverage) noexcept
{
    float from = 0;
    float to = 0;
    std::memcpy(&from, sample, sizeof(from));
    std::memcpy(&to, wanted, sizeof(to));
    const float mixed = coverage == 1 ? to : from + (to - from) * coverage;
    std::memcpy(sample, &mixed, sizeof(mixed));
}

enum class Chroma { OfEvenPixels, OfEveryPixel };

void MixSubsampled(std::byte* row, std::uint32_t code, std::uint32_t x, const StoredColor& color,
                   float coverage, Chroma chroma) noexcept
{
    const bool withChroma = chroma == Chroma::OfEveryPixel || x % 2 == 0;
    if ((code & kBitV210) != 0) {
        std::byte* const group = row + std::size_t{x / 6} * 16;
        MixV210(group, kV210Luma[x % 6], color, coverage);
        if (withChroma) {
            MixV210(group, kV210BlueChroma[x % 6 / 2], color, coverage);
            MixV210(group, kV210RedChroma[x % 6 / 2], color, coverage);
        }
        return;
    }
    std::byte* const pair = row + std::size_t{x / 2} * 4;
    const std::size_t luma = (code & kBitSwapped) != 0 ? 0 : 1;
    const std::size_t chromaAt = 1 - luma;
    MixByte(pair[luma + 2 * (x % 2)], color.pattern[luma], coverage);
    if (withChroma) {
        MixByte(pair[chromaAt], color.pattern[chromaAt], coverage);
        MixByte(pair[chromaAt + 2], color.pattern[chromaAt + 2], coverage);
    }
}

} // namespace

void PaintSpan(std::byte* row, std::uint32_t code, std::uint32_t x, std::uint32_t count,
               const StoredColor& color) noexcept
{
    const PixelGroup group = GroupOf(code);
    // Pixels before the first and after the last whole group; 4:4:4 formats have none.
    while (count > 0 && x % group.pixels != 0) {
        MixSubsampled(row, code, x, color, 1, Chroma::OfEveryPixel);
        ++x;
        --count;
    }
    const std::uint32_t groups = count / group.pixels;
    FillRow(row + std::size_t{x / group.pixels} * group.bytes, std::size_t{groups} * group.bytes,
            std::bit_cast<FillWords>(color.pattern), 0);
    for (std::uint32_t i = groups * group.pixels; i < count; ++i) {
        MixSubsampled(row, code, x + i, color, 1, Chroma::OfEveryPixel);
    }
}

void BlendPixel(std::byte* row, std::uint32_t code, std::uint32_t x, const StoredColor& color,
                float coverage) noexcept
{
    if (!(coverage > 0)) {
        return;
    }
    coverage = std::min(coverage, 1.0F);
    if ((code & kBit422) != 0) {
        MixSubsampled(row, code, x, color, coverage, Chroma::OfEvenPixels);
        return;
    }
    const std::size_t bytes = GroupOf(code).bytes;
    std::byte* const pixel = row + x * bytes;
    if ((code & kBitFloat) != 0) {
        for (std::size_t at = 0; at < bytes; at += sizeof(float)) {
            MixFloat(pixel + at, color.pattern.data() + at, coverage);
        }
        return;
    }
    for (std::size_t at = 0; at < bytes; ++at) {
        MixByte(pixel[at], color.pattern[at], coverage);
    }
}

} // namespace pixmill
