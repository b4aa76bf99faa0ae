/// Chroma subsampling, with the filters that the formats' own standards assume.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// Which rows share a chroma row in 4:2:0.
enum class ChromaRows : std::uint8_t {
    Frame, ///< rows 2k and 2k+1, halves
    Field, ///< top field's from rows 4k and 4k+2 as 3:1, bottom field's from 4k+1 and 4k+3 as 1:3
};

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
[[nodiscard]] FloatPlane HalveWidth(FloatPlane plane, int times) noexcept;

/// Halves `plane`'s height in place, rounded up; rows beyond the picture repeat the last one (of the same
/// field). @return the plane in its new size.
[[nodiscard]] FloatPlane HalveHeight(FloatPlane plane, ChromaRows rows) noexcept;

} // namespace tessel::exporting
