#include "Counts.h"

#include <algorithm>

namespace tessel::scopes {
namespace {

std::uint32_t WeightOf(RowWeights weights, int row) noexcept
{
    const auto index = static_cast<std::size_t>(row);
    return weights.empty() ? 1 : index < weights.size() ? weights[index] : 0;
}

} // namespace

std::uint32_t CountGrid::Highest() const noexcept
{
    const auto highest = std::max_element(mCounts.begin(), mCounts.end());
    return highest == mCounts.end() ? 0 : *highest;
}

void AddWaveform(const Plane& plane, CountGrid& grid, RowWeights weights)
{
    const Steps levels(kLowestLevel, kHighestLevel, grid.Rows());
    // Which column of the grid a column of the picture falls into, once for all rows.
    std::vector<int> columns(static_cast<std::size_t>(plane.width));
    for (int x = 0; x < plane.width; ++x) {
        columns[static_cast<std::size_t>(x)] =
            static_cast<int>(static_cast<std::int64_t>(x) * grid.Columns() / plane.width);
    }
    for (int y = 0; y < plane.height; ++y) {
        const float* const row = plane.Row(y);
        const std::uint32_t weight = WeightOf(weights, y);
        for (int x = 0; x < plane.width && weight != 0; ++x) {
            grid.Add(columns[static_cast<std::size_t>(x)], levels.Of(row[x]), weight);
        }
    }
}

void AddVectors(const Signal& signal, CountGrid& grid, RowWeights weights)
{
    const Steps across(-kVectorReach, kVectorReach, grid.Columns());
    const Steps up(-kVectorReach, kVectorReach, grid.Rows());
    for (int y = 0; y < signal.cb.height; ++y) {
        const float* const cb = signal.cb.Row(y);
        const float* const cr = signal.cr.Row(y);
        const std::uint32_t weight = WeightOf(weights, y);
        for (int x = 0; x < signal.cb.width && weight != 0; ++x) {
            grid.Add(across.Of(cb[x]), up.Of(cr[x]), weight);
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
