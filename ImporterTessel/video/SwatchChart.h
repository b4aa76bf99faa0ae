/// The swatch chart: three bands of patches on a 1920×1080 picture.
#pragma once

#include "FrameView.h"

#include <ImporterTessel/settings/TesselInfo.h>

#include <cstdint>

namespace ImporterTessel {

inline constexpr std::uint32_t kChartWidth = 1920;
inline constexpr std::uint32_t kChartHeight = 1080;

/// Whether a picture of this size can show the chart that the lists describe: 1920×1080; no list empty;
/// exactly three colour components for each crossing of a column and a row; the bands below one another and
/// the last one's last row inside the picture. Coordinates count as unsigned. [thread-safe]
[[nodiscard]] bool IsChartValid(const SwatchCoordinates& coordinates, const SwatchColors& colors,
                                std::uint32_t width, std::uint32_t height) noexcept;

/// Paints the three bands from top to bottom; band borders lie half way between the bands' nearest rows.
/// Paints nothing in a format other than BGRA float, which is no failure.
///
/// @param view  The picture, top row first; the chart is valid for it.
/// @throws std::bad_alloc
void PaintChart(const SwatchCoordinates& coordinates, const SwatchColors& colors, const FrameView& view);

} // namespace ImporterTessel
