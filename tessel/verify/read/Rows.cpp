#include "Rows.h"

#include <cstddef>
#include <cstring>

namespace tessel::verify::read {

void LoadRow(const ComponentView& view, int y, std::uint16_t* row) noexcept
{
    const std::byte* const from = view.first + y * view.rowBytes;
    if (view.sampleBytes == 1 && view.step == 1 && view.shift == 0) {
        for (int x = 0; x < view.width; ++x) {
            row[x] = std::to_integer<std::uint16_t>(from[x]);
        }
    } else if (view.sampleBytes == 2 && view.step == 2 && view.shift == 0 && !view.isBigEndian) {
        std::memcpy(row, from, static_cast<std::size_t>(view.width) * sizeof *row);
    } else {
        for (int x = 0; x < view.width; ++x) {
            row[x] = static_cast<std::uint16_t>(view.At(x, y));
        }
    }
}

void LoadRow(const ComponentView& view, int y, float* row) noexcept
{
    const std::byte* const from = view.first + y * view.rowBytes;
    if (view.isFloat && view.step == sizeof *row) {
        std::memcpy(row, from, static_cast<std::size_t>(view.width) * sizeof *row);
        return;
    }
    if (view.sampleBytes == 1 && view.step == 1 && view.shift == 0) {
        for (int x = 0; x < view.width; ++x) {
            row[x] = static_cast<float>(std::to_integer<unsigned>(from[x]));
        }
        return;
    }
    if (view.sampleBytes == 2 && view.step == 2 && view.shift == 0 && !view.isBigEndian) {
        for (int x = 0; x < view.width; ++x) {
            std::uint16_t code = 0;
            std::memcpy(&code, from + 2 * x, sizeof code);
            row[x] = static_cast<float>(code);
        }
        return;
    }
    for (int x = 0; x < view.width; ++x) {
        row[x] = static_cast<float>(view.At(x, y));
    }
}

} // namespace tessel::verify::read
