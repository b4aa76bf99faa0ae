#include "V210Packing.h"

#include <algorithm>
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

/// Up to four samples in 16 bits each, as they lie in memory: the first one in the lowest bits.
using SixteenBitSamples = std::uint64_t;

template <std::size_t kCount>
void StoreSamples(SixteenBitSamples samples, std::uint16_t* to) noexcept
{
    std::memcpy(to, &samples, kCount * sizeof *to);
}

/// Cb0 Y0 Cr0, Y1 Cb2 Y2 | Cr2 Y3 Cb4, Y4 Cr4 Y5. Half a group is shifted as one number, until a sample lies in
/// its 16 bits of the output. Reading one sample after the other takes half as long again.
void UnpackGroup(const std::byte* packed, std::uint16_t* luma, std::uint16_t* cb, std::uint16_t* cr) noexcept
{
    std::array<std::uint64_t, 2> halves;
    std::memcpy(halves.data(), packed, kBytesPerGroup);
    const auto [low, high] = halves;
    constexpr SixteenBitSamples kFirst = kSampleMask;
    constexpr SixteenBitSamples kSecond = kFirst << 16;
    constexpr SixteenBitSamples kThird = kFirst << 32;
    constexpr SixteenBitSamples kFourth = kFirst << 48;
    StoreSamples<4>(
        (low >> 10 & kFirst) | (low >> 16 & kSecond) | (low >> 20 & kThird) | (high << 38 & kFourth), luma);
    StoreSamples<2>((high >> 32 & kFirst) | (high >> 36 & kSecond), luma + 4);
    StoreSamples<3>((low & kFirst) | (low >> 26 & kSecond) | (high << 12 & kThird), cb);
    StoreSamples<3>((low >> 20 & kFirst) | (high << 16 & kSecond) | (high >> 10 & kThird), cr);
}

} // namespace

void UnpackV210Row(const std::byte* packed, std::int32_t width, std::uint16_t* luma, std::uint16_t* cb,
                   std::uint16_t* cr) noexcept
{
    std::int32_t x = 0;
    for (; x + kPixelsPerGroup <= width; x += kPixelsPerGroup, packed += kBytesPerGroup) {
        UnpackGroup(packed, luma + x, cb + x / 2, cr + x / 2);
    }
    if (x < width) {
        std::array<std::uint16_t, kPixelsPerGroup> lastLuma;
        std::array<std::uint16_t, kPixelsPerGroup / 2> lastCb;
        std::array<std::uint16_t, kPixelsPerGroup / 2> lastCr;
        UnpackGroup(packed, lastLuma.data(), lastCb.data(), lastCr.data());
        std::copy_n(lastLuma.begin(), width - x, luma + x);
        std::copy_n(lastCb.begin(), (width - x + 1) / 2, cb + x / 2);
        std::copy_n(lastCr.begin(), (width - x + 1) / 2, cr + x / 2);
    }
}

void UnpackV210(const std::byte* packed, std::ptrdiff_t rowBytes, const Picture& planes) noexcept
{
    for (std::int32_t y = 0; y < planes.height; ++y) {
        const auto row = [&](std::size_t plane) {
            return reinterpret_cast<std::uint16_t*>(planes.planes[plane] + y * planes.rowBytes[plane]);
        };
        UnpackV210Row(packed + y * rowBytes, planes.width, row(0), row(1), row(2));
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
