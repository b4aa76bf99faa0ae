#include "Counts.h"

namespace tessel::scopes {
namespace {

std::uint32_t WeightOf(RowWeights weights, int row) noexcept
{
    const auto index = static_cast<std::size_t>(row);
    return weights.empty() ? 1 : index < weights.size() ? weights[index] : 0;
}

} // namespace

void AddWaveform(const Plane& plane, CountGrid& grid, RowWeights weights)
{
    const Steps levels(kLowestLevel, kHighestLevel, grid.Rows());
    // Which column of the grid a column of the picture falls into, once for all rows.
    std::vector<int> columns(static_cast<std::size_t>(plane.width));
    for (int x = 0; x < plane.width; ++x) {
        columns[static_cast<std::size_t>(x)] =
            static_cast<int>(static_cast<std::int64_t>(x) * grid.Columns() / plane.width);
    }
    const int gridColumns = grid.Columns();
    const int* const column = columns.data();
    std::vector<int> cells(columns.size());
    int* const cell = cells.data();
    std::uint32_t* const counts = grid.Counts();
    for (int y = 0; y < plane.height; ++y) {
        const float* const row = plane.Row(y);
        const std::uint32_t weight = WeightOf(weights, y);
        if (weight == 0) {
            continue;
        }
        // Two loops: the first one becomes vector code.
        for (int x = 0; x < plane.width; ++x) {
            cell[x] = levels.Of(row[x]) * gridColumns + column[x];
        }
        for (int x = 0; x < plane.width; ++x) {
            counts[cell[x]] += weight;
        }
    }
}

void AddVectors(const Signal& signal, CountGrid& grid, RowWeights weights)
{
    const Steps across(-kVectorReach, kVectorReach, grid.Columns());
    const Steps up(-kVectorReach, kVectorReach, grid.Rows());
    const int gridColumns = grid.Columns();
    std::vector<int> cells(static_cast<std::size_t>(signal.cb.width));
    int* const cell = cells.data();
    std::uint32_t* const counts = grid.Counts();
    for (int y = 0; y < signal.cb.height; ++y) {
        const float* const cb = signal.cb.Row(y);
        const float* const cr = signal.cr.Row(y);
        const std::uint32_t weight = WeightOf(weights, y);
        if (weight == 0) {
            continue;
        }
        for (int x = 0; x < signal.cb.width; ++x) {
            cell[x] = up.Of(cr[x]) * gridColumns + across.Of(cb[x]);
        }
        for (int x = 0; x < signal.cb.width; ++x) {
            counts[cell[x]] += weight;
        }
    }
}

void AddUp(const CountGrid& waveform, std::vector<std::uint32_t>& bins)
{
    const int rowsPerBin = waveform.Rows() / static_cast<int>(bins.size());
    for (int row = 0; row < waveform.Rows(); ++row) {
        std::uint32_t& bin = bins[static_cast<std::size_t>(row / rowsPerBin)];
        for (int column = 0; column < waveform.Columns(); ++column) {
            bin += waveform.At(column, row);
        }
    }
}

} // namespace tessel::scopes
