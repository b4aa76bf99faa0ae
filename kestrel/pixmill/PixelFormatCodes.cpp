#include "PixelFormatCodes.h"

#include "CodeTable.h"
#include "ColorConversion.h"

#include <algorithm>
#include <cstddef>

using BR::PixelFormat;
using namespace pixmill;

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
    return IsInPaintableTable(code);
}

std::uint64_t pixmill::BytesPerRow(std::uint32_t code, std::uint32_t width) noexcept
{
    if (!IsPaintable(code)) {
        return 0;
    }
    const PixelGroup group = GroupOf(code);
    return (std::uint64_t{width} + group.pixels - 1) / group.pixels * group.bytes;
}
