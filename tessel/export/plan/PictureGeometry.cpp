#include "PictureGeometry.h"

#include <numeric>

namespace tessel::exporting {

PictureGeometry GeometryOf(const importhost::ClipDescription& clip) noexcept
{
    PictureGeometry geometry;
    geometry.width = clip.width;
    geometry.height = clip.height;
    geometry.order = clip.Order();
    if (clip.timeScale > 0 && clip.sampleSize > 0) {
        const std::int32_t divisor = std::gcd(clip.timeScale, clip.sampleSize);
        geometry.rateNumerator = clip.timeScale / divisor;
        geometry.rateDenominator = clip.sampleSize / divisor;
    }
    const std::uint32_t numerator = clip.pixelAspect.GetNumerator();
    const std::uint32_t denominator = clip.pixelAspect.GetDenominator();
    if (numerator != 0 && denominator != 0) {
        const std::uint32_t common = std::gcd(numerator, denominator);
        constexpr std::uint32_t kHighest = 0x7FFFFFFF;
        if (numerator / common <= kHighest && denominator / common <= kHighest) {
            geometry.aspectNumerator = static_cast<std::int32_t>(numerator / common);
            geometry.aspectDenominator = static_cast<std::int32_t>(denominator / common);
        }
    }
    return geometry;
}

std::string_view FieldOrderName(importhost::FieldOrder order) noexcept
{
    switch (order) {
    case importhost::FieldOrder::UpperFirst:
        return "upper field first";
    case importhost::FieldOrder::LowerFirst:
        return "lower field first";
    case importhost::FieldOrder::Progressive:
        break;
    }
    return "progressive";
}

} // namespace tessel::exporting
