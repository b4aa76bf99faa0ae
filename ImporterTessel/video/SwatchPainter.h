/// Painting one band of the swatch chart.
#pragma once

#include "FrameView.h"

#include <ImporterTessel/settings/TesselInfo.h>

#include <cstdint>
#include <span>

namespace ImporterTessel {

/// Pixels from `start` up to but not including `end`.
struct PixelRange {
    std::uint32_t start = 0;
    std::uint32_t end = 0;
};

inline constexpr std::int32_t kSwatchesPainted = 0;
inline constexpr std::int32_t kSwatchesNeedBGRAFloat = -1000;

/// Paints a band: each coordinate is the centre of a swatch, borders lie half way between neighbouring
/// centres, and the outer borders are those of the band.
///
/// A swatch's colour is red, green, blue, in this order; the list goes column by column, all rows of the
/// first column first. Alpha is 1. Coordinates are taken as unsigned. Where centres are not in ascending
/// order ranges overlap or are empty: the later column and the later row win, and what no range covers
/// stays as it is. Nothing outside the view is ever written.
///
/// @param coordinates  Centres; both lists may have any length and any content.
/// @param columns,rows Outer borders of the band.
/// @param colors       Three floats a swatch, at least 3 × columns × rows of them.
/// @param view         The picture, top row first: its row 0 is the picture's top row.
/// @return `kSwatchesPainted`, or `kSwatchesNeedBGRAFloat` with nothing painted for any other format.
/// Threads: [any-thread] on different frames. Cost: a frame's worth of writes at most, however many
/// swatches overlap. @throws std::bad_alloc before anything is painted.
[[nodiscard]] std::int32_t PaintSwatches(const Coordinates& coordinates, PixelRange columns, PixelRange rows,
                                         std::span<const float> colors, const FrameView& view);

} // namespace ImporterTessel
