/// Size, rate and the rest that every picture stream announces.
#pragma once

#include <kestrel/importhost/Clip.h>

#include <cstdint>
#include <string_view>

namespace tessel::exporting {

struct PictureGeometry {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t rateNumerator =
        0; ///< frames per second, exact, in lowest terms; 0: the clip has no usable rate
    std::int32_t rateDenominator = 1;
    std::int32_t aspectNumerator = 0; ///< of a pixel; 0: not known
    std::int32_t aspectDenominator = 1;
    importhost::FieldOrder order = importhost::FieldOrder::Progressive;
};

[[nodiscard]] PictureGeometry GeometryOf(const importhost::ClipDescription& clip) noexcept;

/// "progressive", "upper field first", "lower field first".
[[nodiscard]] std::string_view FieldOrderName(importhost::FieldOrder order) noexcept;

} // namespace tessel::exporting
