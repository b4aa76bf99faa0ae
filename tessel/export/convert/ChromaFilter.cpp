#include "ChromaFilter.h"

#include <algorithm>

namespace tessel::exporting {
namespace {

void HalveRow(const float* source, std::int32_t width, float* destination) noexcept
{
    const std::int32_t halved = (width + 1) / 2;
    // Writing never overtakes reading: output x needs inputs 2x-1 .. 2x+1, and the left one is kept aside
    // because output x may have replaced it.
    float left = source[0];
    for (std::int32_t x = 0; x < halved; ++x) {
        const float centre = source[2 * x];
        const float right = source[std::min(2 * x + 1, width - 1)];
        destination[x] = (left + 2.0F * centre + right) * 0.25F;
        left = right;
    }
}

/// The last row of `row`'s field that the picture has, or the nearest row where a field is empty.
std::int32_t KeepInField(std::int32_t row, std::int32_t height) noexcept
{
    while (row >= height) {
        row -= 2;
    }
    return std::max(row, 0);
}

} // namespace

FloatPlane HalveWidth(FloatPlane plane, int times) noexcept
{
    for (; times > 0; --times) {
        FloatPlane halved = plane;
        halved.width = (plane.width + 1) / 2;
        for (std::int32_t y = 0; y < plane.height; ++y) {
            HalveRow(plane.Row(y), plane.width, halved.Row(y));
        }
        plane = halved;
    }
    return plane;
}

FloatPlane HalveHeight(FloatPlane plane, ChromaRows rows) noexcept
{
    FloatPlane halved = plane;
    halved.height = (plane.height + 1) / 2;
    for (std::int32_t y = 0; y < halved.height; ++y) {
        std::int32_t first = 2 * y;
        std::int32_t second = std::min(first + 1, plane.height - 1);
        float firstWeight = 0.5F;
        if (rows == ChromaRows::Field) {
            const std::int32_t field = y % 2;
            first = KeepInField(4 * (y / 2) + field, plane.height);
            second = KeepInField(4 * (y / 2) + field + 2, plane.height);
            firstWeight = field == 0 ? 0.75F : 0.25F;
        }
        // In place is safe: row y of the result is made from rows y or later, and rows go top to bottom.
        const float* a = plane.Row(first);
        const float* b = plane.Row(second);
        float* out = halved.Row(y);
        for (std::int32_t x = 0; x < plane.width; ++x) {
            out[x] = firstWeight * a[x] + (1.0F - firstWeight) * b[x];
        }
    }
    return halved;
}

} // namespace tessel::exporting
