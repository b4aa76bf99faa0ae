#include "V210Packing.h"

#include <array>
#include <bit>
#include <cstring>

namespace tessel::exporting {
namespace {

constexpr std::int32_t kPixelsPerGroup = 6;
constexpr std::size_t kBytesPerGroup = 16;
constexpr std::uint32_t kSampleMask = 0x3FF;

static_assert(std::endian::native == std::endian::little, "words are read and written as they lie in memory");

using Words = std::array<std::uint32_t, 4>;

/// The twelve samples of a group in their order of appearance.
using GroupSamples = std::array<std::uint16_t, 12>;

} // namespace

void UnpackV210Row(const std::byte* packed, std::int32_t width, std::uint16_t* luma, std::uint16_t* cb,
                   std::uint16_t* cr) noexcept
{
    for (std::int32_t x = 0; x < width; x += kPixelsPerGroup, packed += kBytesPerGroup) {
        Words words;
        std::memcpy(words.data(), packed, kBytesPerGroup);
        GroupSamples samples;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            samples[i] = static_cast<std::uint16_t>((words[i / 3] >> (10 * (i % 3))) & kSampleMask);
        }
        // Cb Y Cr Y, three times.
        for (std::int32_t pair = 0; pair < 3 && x + 2 * pair < width; ++pair) {
            const std::size_t first = 4 * static_cast<std::size_t>(pair);
            cb[x / 2 + pair] = samples[first];
            luma[x + 2 * pair] = samples[first + 1];
            cr[x / 2 + pair] = samples[first + 2];
            if (x + 2 * pair + 1 < width) {
                luma[x + 2 * pair + 1] = samples[first + 3];
            }
        }
    }
}

void PackV210Row(const std::uint16_t* luma, const std::uint16_t* cb, const std::uint16_t* cr,
                 std::int32_t width, std::byte* packed) noexcept
{
    std::byte* const end = packed + V210RowBytes(width);
    for (std::int32_t x = 0; x < width; x += kPixelsPerGroup, packed += kBytesPerGroup) {
        GroupSamples samples{};
        for (std::int32_t pair = 0; pair < 3 && x + 2 * pair < width; ++pair) {
            const std::size_t first = 4 * static_cast<std::size_t>(pair);
            samples[first] = cb[x / 2 + pair];
            samples[first + 1] = luma[x + 2 * pair];
            samples[first + 2] = cr[x / 2 + pair];
            samples[first + 3] = x + 2 * pair + 1 < width ? luma[x + 2 * pair + 1] : std::uint16_t{0};
        }
        Words words{};
        for (std::size_t i = 0; i < samples.size(); ++i) {
            words[i / 3] |= (samples[i] & kSampleMask) << (10 * (i % 3));
        }
        std::memcpy(packed, words.data(), kBytesPerGroup);
    }
    std::memset(packed, 0, static_cast<std::size_t>(end - packed));
}

void CopyV210Rows(const Picture& picture, std::byte* packed) noexcept
{
    const auto fileRow = static_cast<std::size_t>(V210RowBytes(picture.width));
    const std::size_t painted =
        (static_cast<std::size_t>(picture.width) + kPixelsPerGroup - 1) / kPixelsPerGroup * kBytesPerGroup;
    for (std::int32_t row = 0; row < picture.height; ++row) {
        std::memcpy(packed, picture.planes[0] + row * picture.rowBytes[0], painted);
        std::memset(packed + painted, 0, fileRow - painted);
        packed += fileRow;
    }
}

} // namespace tessel::exporting
