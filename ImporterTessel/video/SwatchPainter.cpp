#include "SwatchPainter.h"

#include <kestrel/pixmill/PixelFormatCodes.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

namespace ImporterTessel {

namespace {

using Pixel = std::array<float, 4>; // blue, green, red, alpha
static_assert(sizeof(Pixel) == 16);

constexpr std::size_t kNobody = std::numeric_limits<std::size_t>::max();

/// Intended: unsigned and modulo 2^32, so that any list of centres gives some border.
[[nodiscard]] std::uint32_t Between(std::int32_t centre, std::int32_t nextCentre) noexcept
{
    const auto from = static_cast<std::uint32_t>(centre);
    return from + (static_cast<std::uint32_t>(nextCentre) - from) / 2;
}

[[nodiscard]] PixelRange RangeOf(std::size_t index, std::span<const std::int32_t> centres,
                                 PixelRange outer) noexcept
{
    return {.start = index == 0 ? outer.start : Between(centres[index - 1], centres[index]),
            .end = index + 1 == centres.size() ? outer.end : Between(centres[index], centres[index + 1])};
}

/// For each pixel along one axis the index of the centre that paints it last. Rows and columns of the chart
/// are independent, so knowing both owners of a pixel gives its colour without painting it more than once.
[[nodiscard]] std::vector<std::size_t> Owners(std::span<const std::int32_t> centres, PixelRange outer,
                                              std::uint32_t limit)
{
    std::vector<std::size_t> owners(limit, kNobody);
    for (std::size_t index = 0; index < centres.size(); ++index) {
        const PixelRange range = RangeOf(index, centres, outer);
        const std::uint32_t end = std::min(range.end, limit);
        if (range.start < end) {
            std::fill(owners.begin() + range.start, owners.begin() + end, index);
        }
    }
    return owners;
}

/// Neighbouring columns with the same owner.
struct ColumnRun {
    PixelRange columns;
    std::size_t owner = kNobody;
};

[[nodiscard]] std::vector<ColumnRun> RunsOf(const std::vector<std::size_t>& owners)
{
    std::vector<ColumnRun> runs;
    for (std::uint32_t column = 0; column < owners.size(); ++column) {
        const std::size_t owner = owners[column];
        if (owner == kNobody) {
            continue;
        }
        if (runs.empty() || runs.back().owner != owner || runs.back().columns.end != column) {
            runs.push_back({.columns = {.start = column, .end = column}, .owner = owner});
        }
        runs.back().columns.end = column + 1;
    }
    return runs;
}

void PaintRun(std::byte* row, PixelRange columns, const Pixel& pixel) noexcept
{
    std::byte* target = row + std::size_t{columns.start} * sizeof(Pixel);
    for (std::uint32_t column = columns.start; column < columns.end; ++column, target += sizeof(Pixel)) {
        std::memcpy(target, pixel.data(), sizeof(Pixel)); // the host's rows need not be aligned
    }
}

} // namespace

std::int32_t PaintSwatches(const Coordinates& coordinates, PixelRange columns, PixelRange rows,
                           std::span<const float> colors, const FrameView& view)
{
    if (view.paintCode != pixmill::kBGRAFloat) {
        return kSwatchesNeedBGRAFloat;
    }
    const std::size_t rowCount = coordinates.yCoordinates.size();
    const std::vector<ColumnRun> runs = RunsOf(Owners(coordinates.xCoordinates, columns, view.width));
    const std::vector<std::size_t> rowOwners = Owners(coordinates.yCoordinates, rows, view.height);
    for (std::uint32_t row = 0; row < view.height; ++row) {
        if (rowOwners[row] == kNobody) {
            continue;
        }
        for (const ColumnRun& run : runs) {
            const std::span<const float> redGreenBlue =
                colors.subspan((rowCount * run.owner + rowOwners[row]) * 3, 3);
            PaintRun(view.Row(row), run.columns, {redGreenBlue[2], redGreenBlue[1], redGreenBlue[0], 1.0F});
        }
    }
    return kSwatchesPainted;
}

} // namespace ImporterTessel
