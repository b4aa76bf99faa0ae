#include "ChromaFilter.h"

#include <algorithm>
#include <vector>

namespace tessel::exporting {
namespace {

using qelaccelerate::RunWithVectors;

/// @param source  does not overlap `destination`: only then can the loop become vector code
void HalveRow(const float* source, std::int32_t width, float* destination) noexcept
{
    const auto weighted = [](float left, float centre, float right) {
        return (left + 2.0F * centre + right) * 0.25F;
    };
    destination[0] = weighted(source[0], source[0], source[std::min(1, width - 1)]);
    const std::int32_t pairs = width / 2;
    for (std::int32_t x = 1; x < pairs; ++x) {
        destination[x] = weighted(source[2 * x - 1], source[2 * x], source[2 * x + 1]);
    }
    if (width % 2 == 1 && width > 1) {
        destination[pairs] = weighted(source[width - 2], source[width - 1], source[width - 1]);
    }
}

void MixRows(const float* first, float firstWeight, const float* second, std::int32_t width,
             float* out) noexcept
{
    for (std::int32_t x = 0; x < width; ++x) {
        out[x] = firstWeight * first[x] + (1.0F - firstWeight) * second[x];
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

FloatPlane HalveWidth(FloatPlane plane, int times, VectorWidth width)
{
    std::vector<float> row(static_cast<std::size_t>(plane.width));
    for (; times > 0; --times) {
        FloatPlane halved = plane;
        halved.width = (plane.width + 1) / 2;
        for (std::int32_t y = 0; y < plane.height; ++y) {
            std::copy_n(plane.Row(y), plane.width, row.data());
            RunWithVectors(width, [from = row.data(), count = plane.width, to = halved.Row(y)] {
                HalveRow(from, count, to);
            });
        }
        plane = halved;
    }
    return plane;
}

FloatPlane HalveHeight(FloatPlane plane, ChromaRows rows, VectorWidth width) noexcept
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
        RunWithVectors(width, [=, a = plane.Row(first), b = plane.Row(second), count = plane.width,
                               out = halved.Row(y)] { MixRows(a, firstWeight, b, count, out); });
    }
    return halved;
}

} // namespace tessel::exporting
