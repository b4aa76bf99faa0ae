/// Glyphs as pixels: which pixels of a cell a digit covers, and by how much.
#pragma once

#include "GlyphGeometry.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace pixmill {

/// Neighbouring pixels of one row of a cell.
struct InkRun {
    static constexpr std::uint32_t kSolid = 0xFFFFFFFF;

    std::uint32_t x;      ///< from the cell's left edge
    std::uint32_t length; ///< pixels
    std::uint32_t edges;  ///< `kSolid` for fully covered pixels, else where their coverages begin
};

/// A glyph in one size, as runs of covered pixels row by row. Pixels in no run are not covered.
class GlyphMask {
public:
    /// Rasterises. Coverage is that of a straight edge at the pixel's distance from the stroke's edge.
    /// @throws std::bad_alloc
    /// Cost: a few dozen distances a row, whatever the size.
    GlyphMask(std::size_t glyph, std::uint32_t digitHeight, std::uint32_t cellWidth);

    /// @param row  From the top of the digit, below its height.
    [[nodiscard]] std::span<const InkRun> Row(std::uint32_t row) const noexcept
    {
        return std::span(mRuns).subspan(mRowStarts[row], mRowStarts[row + 1] - mRowStarts[row]);
    }
    /// The coverages of a run that is not solid, one for each of its pixels: 1..254 of 255.
    [[nodiscard]] const std::uint8_t* Edges(const InkRun& run) const noexcept
    {
        return mEdges.data() + run.edges;
    }

private:
    std::vector<InkRun> mRuns;
    std::vector<std::size_t> mRowStarts; // one more than there are rows
    std::vector<std::uint8_t> mEdges;
};

/// The mask of a glyph for a layout. Each thread keeps the masks of the size that it used last, because a
/// frame is painted faster than its digits are rasterised; the reference holds until the thread asks for
/// another size. @throws std::bad_alloc
[[nodiscard]] const GlyphMask& MaskFor(std::size_t glyph, const NumberLayout& layout);

} // namespace pixmill
