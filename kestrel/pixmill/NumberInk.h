/// Putting the runs of a printed number into rows of pixels.
#pragma once

#include "ColorConversion.h"
#include "GlyphMasks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace pixmill {

/// White ink for one format. Coverage mixes in the numbers that the format stores, each rounded to nearest.
class NumberInk {
public:
    /// @param code  A paintable format.
    explicit NumberInk(std::uint32_t code) noexcept;

    /// Paints pixels x .. x+count-1 of a row black. In subsampled formats x and count are even.
    void PaintPlate(std::byte* row, std::uint32_t x, std::uint32_t count) const noexcept;

    /// Paints the runs of one row of a glyph, whose cell begins at pixel x, on a plate painted before. Faster
    /// than `BlendRuns`, because on black each coverage makes one known code.
    void PaintRuns(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                   std::span<const InkRun> runs) const noexcept;

    /// The same over any picture.
    void BlendRuns(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                   std::span<const InkRun> runs) const noexcept;

private:
    enum class Layout : std::uint8_t { Bytes4, Floats4, Subsampled8, V210 };

    // The layout is chosen once for all runs of a row: there are thousands of runs, most a few pixels long.
    template <Layout kLayout>
    void PaintRunsAs(std::byte* row, std::uint32_t x, const GlyphMask& mask,
                     std::span<const InkRun> runs) const noexcept;
    template <Layout kLayout>
    void PaintSolid(std::byte* row, std::uint32_t x, std::uint32_t count) const noexcept;
    template <Layout kLayout>
    void PaintEdges(std::byte* row, std::uint32_t x, std::uint32_t count,
                    const std::uint8_t* coverages) const noexcept;

    std::uint32_t mCode;
    Layout mLayout;
    StoredColor mBlack;
    StoredColor mWhite;
    std::size_t mLumaAt = 0; // Subsampled8: the byte of a pixel's two that is luma
    // By coverage: the pixel of Bytes4, or the luma code of the subsampled formats.
    std::array<std::uint32_t, 256> mCodes{};
};

} // namespace pixmill
