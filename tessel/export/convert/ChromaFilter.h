/// Chroma subsampling, with the filters that the formats' own standards assume.
#pragma once

#include "Conversion.h"

#include <kestrel/qelaccelerate/VectorWidth.h>

#include <cstdint>

namespace tessel::exporting {

using qelaccelerate::VectorWidth;
using qelaccelerate::WidestVectors;

/// A plane of floats in memory without gaps between rows.
struct FloatPlane {
    float* samples = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;

    [[nodiscard]] float* Row(std::int32_t y) const noexcept
    {
        return samples + static_cast<std::int64_t>(y) * width;
    }
};

/// Halves `plane`'s width in place `times` times; the result's rows have no gaps. Chroma is co-sited with
/// every second column, filter (1 2 1)/4, edges repeated. Twice makes (1 2 3 4 3 2 1)/16 about every fourth
/// column. Sums of integers up to 65535 stay exact. @return the plane in its new size.
[[nodiscard]] FloatPlane HalveWidth(FloatPlane plane, int times, VectorWidth width = WidestVectors());

/// Halves `plane`'s height in place, rounded up; rows beyond the picture repeat the last one (of the same
/// field). @return the plane in its new size.
[[nodiscard]] FloatPlane HalveHeight(FloatPlane plane, ChromaRows rows,
                                     VectorWidth width = WidestVectors()) noexcept;

} // namespace tessel::exporting
