/// What can have become of the rows of a picture, as predictions of every row from the clip's frames.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Upper rows are 0, 2, 4, ... of the clip's frame, lower rows 1, 3, 5, ...; a pair is rows 2k and 2k+1.
enum class FieldModel : std::uint8_t {
    Right,          ///< each row in its place
    Moved,          ///< the whole frame moved down by a part of a row, as geometry was measured
    PairsExchanged, ///< the rows of each pair exchanged
    OneRowDown,     ///< each row one row lower, so that each field is on the other's rows
    OneRowUp,
    PairsMixed,   ///< each row is the mean of its pair
    RowsMixed,    ///< each row mixed with the rows above and below, 1:2:1
    UpperDoubled, ///< upper rows shown twice
    LowerDoubled,
    UpperBetween, ///< upper rows kept, lower rows the mean of the upper rows around them
    LowerBetween,
    UpperAdaptive, ///< the same, but only where the frame differs from the one before it
    LowerAdaptive,
    UpperAdaptiveNext, ///< likewise where the frame differs from the one behind it, as for a second field
    LowerAdaptiveNext,
    UpperStretched, ///< the upper field enlarged to all rows, linearly
    LowerStretched,
    LowerFromNext, ///< upper rows of frame n, lower rows of frame n + 1
    UpperFromNext,
    LowerFromLast, ///< upper rows of frame n, lower rows of frame n - 1
    UpperFromLast,
    MixedWithNext, ///< the mean of frames n and n + 1
    MixedWithLast,
};
inline constexpr std::size_t kFieldModels = 23;

/// Samples of some rows of a frame, row by row; `rows[0]` is an upper row.
struct RowSamples {
    std::size_t columns = 0;
    std::vector<float> values;

    [[nodiscard]] std::size_t Rows() const noexcept { return columns == 0 ? 0 : values.size() / columns; }
    [[nodiscard]] const float* Row(std::size_t row) const noexcept { return values.data() + row * columns; }
};

/// The same rows and columns of frames n - 1, n and n + 1 of the clip. All of one size.
struct FieldReference {
    const RowSamples& last;
    const RowSamples& now;
    const RowSamples& next;
    double movedDown = 0; ///< rows, for `Moved`
};

/// Sums of products of what two models leave unexplained. `at[m][m]` is the squared residual of model m, and
/// at[a][a] + at[b][b] - 2 at[a][b] is how far the predictions of a and b lie apart.
struct FieldProducts {
    std::array<std::array<double, kFieldModels>, kFieldModels> at{};
    double samples = 0;

    FieldProducts& operator+=(const FieldProducts& other) noexcept;
};

/// Rows above and below, which predictions reach into and which are not compared themselves.
inline constexpr std::size_t kFieldMargin = 4;

/// Compares `found`, of the same size as the reference, with every model. `movedDown` is within -2..2.
/// Cost: some 250 multiplications a sample.
[[nodiscard]] FieldProducts CompareFields(const FieldReference& clip, const RowSamples& found);

} // namespace tessel::verify::judge
