/// How often values occur in a picture: the grids that waveform, parade, vectorscope and histogram draw.
#pragma once

#include "Signal.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessel::scopes {

/// Equal steps from `bottom` to `top`; values beyond fall into the first or the last one, so that nothing of a
/// picture is lost from sight.
class Steps {
public:
    /// @param count  1 or more
    constexpr Steps(float bottom, float top, int count) noexcept
        : mBottom(bottom), mFactor(static_cast<float>(count) / (top - bottom)),
          mLast(static_cast<float>(count - 1)), mCount(count)
    {
    }

    /// The step of a value, 0 at the bottom. A NaN is in step 0.
    [[nodiscard]] constexpr int Of(float value) const noexcept
    {
        const float place = (value - mBottom) * mFactor;
        // Written so that a NaN gives 0, and without branches, for vector code.
        const float positive = place > 0.0F ? place : 0.0F;
        return static_cast<int>(positive < mLast ? positive : mLast);
    }
    [[nodiscard]] constexpr int Count() const noexcept { return mCount; }

private:
    float mBottom;
    float mFactor;
    float mLast;
    int mCount;
};

/// The levels that waveform, parade and histogram show, black at 0 and white at 1: from -0.1 to 1.1, which
/// holds all codes of 8 and 10 bits (at 8 bits code 0 is -0.073, code 255 is 1.091).
inline constexpr float kLowestLevel = -0.1F;
inline constexpr float kHighestLevel = 1.1F;

/// Counts over a rectangle of cells. Row 0 is the lowest value.
class CountGrid {
public:
    CountGrid(int columns, int rows)
        : mColumns(columns), mRows(rows),
          mCounts(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows))
    {
    }

    void Clear() { mCounts.assign(mCounts.size(), 0); }
    void Add(int column, int row, std::uint32_t count = 1) noexcept
    {
        mCounts[static_cast<std::size_t>(row) * static_cast<std::size_t>(mColumns) +
                static_cast<std::size_t>(column)] += count;
    }
    [[nodiscard]] std::uint32_t At(int column, int row) const noexcept
    {
        return mCounts[static_cast<std::size_t>(row) * static_cast<std::size_t>(mColumns) +
                       static_cast<std::size_t>(column)];
    }
    /// All counts: those of row 0 from left to right, then those of row 1.
    [[nodiscard]] std::uint32_t* Counts() noexcept { return mCounts.data(); }
    [[nodiscard]] int Columns() const noexcept { return mColumns; }
    [[nodiscard]] int Rows() const noexcept { return mRows; }

private:
    int mColumns;
    int mRows;
    std::vector<std::uint32_t> mCounts;
};

/// How often each row of a picture counts, from the top; empty: once each. Rows behind the last number do not
/// count.
using RowWeights = std::span<const std::uint32_t>;

/// Adds a component's levels, each in the column of its place in the picture: a waveform.
void AddWaveform(const Plane& plane, CountGrid& grid, RowWeights weights = {});

/// Chroma that the vectorscope shows at its edges: 1.2 times the chroma of full colours, in both directions.
inline constexpr float kVectorReach = 0.6F;

/// Adds each pair of chroma samples: Cb to the right, Cr upwards, both 0 in the middle.
void AddVectors(const Signal& signal, CountGrid& grid, RowWeights weights = {});

/// Adds a waveform's counts of each level: a histogram.
/// @param bins  at most as many as the waveform has rows, a divisor of that number; zeroed by the caller, or
/// counted on
void AddUp(const CountGrid& waveform, std::vector<std::uint32_t>& bins);

} // namespace tessel::scopes
