#include "Counts.h"

#include <algorithm>

namespace tessel::scopes {

std::uint32_t CountGrid::Highest() const noexcept
{
    const auto highest = std::max_element(mCounts.begin(), mCounts.end());
    return highest == mCounts.end() ? 0 : *highest;
}

void AddWaveform(const Plane& plane, CountGrid& grid)
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
        for (int x = 0; x < plane.width; ++x) {
            grid.Add(columns[static_cast<std::size_t>(x)], levels.Of(row[x]));
        }
    }
}

void AddVectors(const Signal& signal, CountGrid& grid)
{
    const Steps across(-kVectorReach, kVectorReach, grid.Columns());
    const Steps up(-kVectorReach, kVectorReach, grid.Rows());
    for (std::size_t i = 0; i < signal.cb.samples.size(); ++i) {
        grid.Add(across.Of(signal.cb.samples[i]), up.Of(signal.cr.samples[i]));
    }
}

void AddHistogram(const Plane& plane, std::vector<std::uint32_t>& bins)
{
    const Steps levels(kLowestLevel, kHighestLevel, static_cast<int>(bins.size()));
    for (const float sample : plane.samples) {
        ++bins[static_cast<std::size_t>(levels.Of(sample))];
    }
}

} // namespace tessel::scopes
