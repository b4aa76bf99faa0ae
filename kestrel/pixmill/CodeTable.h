/// The codes of the 48 formats, and which of them can be painted. Made at compile time.
#pragma once

#include "PixelFormatCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace pixmill {

/// In the order of `BR::PixelFormat`.
inline constexpr auto kCodes = [] {
    constexpr std::uint32_t k8 = kBitInterleaved4 | kBit8;
    constexpr std::uint32_t kFloat = kBitInterleaved4 | kBitFloat;
    constexpr std::uint32_t kLinear = kFloat | kBitLinear;
    constexpr std::uint32_t kArgb = kBitSwapped;
    constexpr std::uint32_t kP = kBitPremultiplied;
    constexpr std::uint32_t kX = kBitNoAlpha;
    constexpr std::uint32_t kYuv601 = kBitYCbCr;
    constexpr std::uint32_t kYuv709 = kBitYCbCr | kBit709;
    constexpr std::uint32_t kUyvy = kBitYCbCr | kBit8 | kBit422;
    constexpr std::uint32_t kYuyv = kUyvy | kBitSwapped;
    constexpr std::uint32_t kV210 = kBitYCbCr | kBit422 | kBitV210;
    constexpr std::uint32_t kPlanar = kBitYCbCr | kBit8 | kBit420;
    constexpr std::uint32_t kDv = kPlanar | kBit422;
    const auto kind = [](std::uint32_t topByte) { return topByte << 24; };

    return std::array<std::uint32_t, 48>{
        // 8-bit, with alpha, without, premultiplied
        k8, k8 | kYuv601, k8 | kYuv709, k8 | kArgb,                     //
        k8 | kX, k8 | kX | kYuv601, k8 | kX | kYuv709, k8 | kX | kArgb, //
        k8 | kP, k8 | kP | kYuv601, k8 | kP | kYuv709, k8 | kP | kArgb, //
        // the same in float
        kFloat, kFloat | kYuv601, kFloat | kYuv709, kFloat | kArgb,                                       //
        kFloat | kX, kFloat | kX | kYuv601, kFloat | kX | kYuv709, kFloat | kX | kArgb,                   //
        kFloat | kP, kFloat | kP | kYuv601, kFloat | kP | kYuv709, kFloat | kP | kArgb,                   //
        kYuyv, kYuyv | kBit709, kUyvy, kUyvy | kBit709, kV210, kV210 | kBit709,                           //
        kLinear, kLinear | kP, kLinear | kX, kLinear | kArgb, kLinear | kArgb | kP, kLinear | kArgb | kX, //
        // planar 4:2:0: frame and field pictures
        kind(1) | kPlanar, kind(2) | kPlanar, kind(1) | kPlanar | kBit709, kind(2) | kPlanar | kBit709, //
        kind(9) | kDv, kind(10) | kDv, kind(11) | kDv, kind(12) | kDv,                                  //
        kind(13) | kDv | kBit709, kind(14) | kDv | kBit709, kind(15) | kDv | kBit709, kind(16) | kDv | kBit709};
}();

/// By code: an array, because a fill asks for every row.
inline constexpr auto kPaintable = [] {
    constexpr std::size_t kEnd = 0x1000; // no paintable code has more bits
    std::array<bool, kEnd> paintable{};
    for (const std::uint32_t code : kCodes) {
        if ((code & kKindMask) == 0) {
            paintable[code] = true;
        }
    }
    return paintable;
}();

static_assert(std::count(kPaintable.begin(), kPaintable.end(), true) == 36);
static_assert(kCodes[0] == kBGRA8 && kCodes[2] == kVUYA8_709 && kCodes[12] == kBGRAFloat);

/// `IsPaintable` without a call.
[[nodiscard]] inline bool IsInPaintableTable(std::uint32_t code) noexcept
{
    return code < kPaintable.size() && kPaintable[code];
}

} // namespace pixmill
