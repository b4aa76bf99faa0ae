#include "PixelFormatCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>

using BR::PixelFormat;
using namespace pixmill;

namespace {

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

constexpr std::uint32_t Kind(std::uint32_t topByte)
{
    return topByte << 24;
}

// In the order of BR::PixelFormat.
constexpr std::array<std::uint32_t, 48> kCodes = {
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
    Kind(1) | kPlanar, Kind(2) | kPlanar, Kind(1) | kPlanar | kBit709, Kind(2) | kPlanar | kBit709, //
    Kind(9) | kDv, Kind(10) | kDv, Kind(11) | kDv, Kind(12) | kDv,                                  //
    Kind(13) | kDv | kBit709, Kind(14) | kDv | kBit709, Kind(15) | kDv | kBit709, Kind(16) | kDv | kBit709};

// A fill is called once per row, so the question whether a code can be painted has to be cheap.
constexpr std::size_t kPaintableEnd = 0x1000;

constexpr auto kPaintable = [] {
    std::array<bool, kPaintableEnd> paintable{};
    for (const std::uint32_t code : kCodes) {
        if ((code & kKindMask) == 0) {
            paintable[code] = true;
        }
    }
    return paintable;
}();

static_assert(std::count(kPaintable.begin(), kPaintable.end(), true) == 36);
static_assert(kCodes[0] == kBGRA8 && kCodes[2] == kVUYA8_709 && kCodes[12] == kBGRAFloat);

} // namespace

std::uint32_t PM_QELPixelFormatToPMPixelFormat(PixelFormat format) noexcept
{
    const auto index = static_cast<std::size_t>(format); // Unknown becomes a huge index
    return index < kCodes.size() ? kCodes[index] : 0;
}

PixelFormat PM_PMPixelFormatToQELPixelFormat(std::uint32_t code) noexcept
{
    const auto* const found = std::find(kCodes.begin(), kCodes.end(), code);
    return found == kCodes.end() ? PixelFormat::Unknown : static_cast<PixelFormat>(found - kCodes.begin());
}

bool pixmill::IsPaintable(std::uint32_t code) noexcept
{
    return code < kPaintable.size() && kPaintable[code];
}

std::uint64_t pixmill::BytesPerRow(std::uint32_t code, std::uint32_t width) noexcept
{
    if (!IsPaintable(code)) {
        return 0;
    }
    const std::uint64_t pixels = width;
    if ((code & kBitV210) != 0) {
        return (pixels + 5) / 6 * 16;
    }
    if ((code & kBit422) != 0) {
        return (pixels + 1) / 2 * 4;
    }
    return pixels * ((code & kBitFloat) != 0 ? 16 : 4);
}
