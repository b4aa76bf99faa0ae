/// What printed digits look like when they are sampled on a grid.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

namespace tessel::verify::align {

/// How much of a spot is covered by a digit, 0..1.
///
/// @param digit  0..9
/// @param x,y    in heights of the digit from the top left corner of its ink's box
/// @param soft   over which distance an edge rises, in heights of the digit: the pixels of the clip
[[nodiscard]] double InkAt(std::size_t digit, double x, double y, double soft) noexcept;

/// The ten digits on one grid, each with mean 0 and length 1, so that a product is a correlation.
class DigitShapes {
public:
    /// @param columns,rows  of the grid, which covers a cell: the advance wide, the digit high
    /// @param points        each spot is the mean of points × points samples
    DigitShapes(int columns, int rows, int points, double soft);

    [[nodiscard]] const std::vector<double>& Of(std::size_t digit) const noexcept { return mShapes[digit]; }

private:
    std::array<std::vector<double>, 10> mShapes;
};

/// Takes off the mean and makes the length 1. @return the length before; 0 leaves zeros.
double Normalize(std::vector<double>& values) noexcept;

} // namespace tessel::verify::align
