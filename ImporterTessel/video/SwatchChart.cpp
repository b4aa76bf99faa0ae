#include "SwatchChart.h"

#include "SwatchPainter.h"

#include <vector>

namespace ImporterTessel {

namespace {

[[nodiscard]] std::uint32_t FirstRow(const Coordinates& band) noexcept
{
    return static_cast<std::uint32_t>(band.yCoordinates.front());
}

[[nodiscard]] std::uint32_t LastRow(const Coordinates& band) noexcept
{
    return static_cast<std::uint32_t>(band.yCoordinates.back());
}

[[nodiscard]] bool HasAllColors(const Coordinates& band, const std::vector<float>& colors) noexcept
{
    return !band.xCoordinates.empty() && !band.yCoordinates.empty() && !colors.empty() &&
           colors.size() == band.xCoordinates.size() * band.yCoordinates.size() * 3;
}

[[nodiscard]] std::uint32_t BorderBetween(const Coordinates& upper, const Coordinates& lower) noexcept
{
    return LastRow(upper) + (FirstRow(lower) - LastRow(upper)) / 2;
}

} // namespace

bool IsChartValid(const SwatchCoordinates& coordinates, const SwatchColors& colors, std::uint32_t width,
                  std::uint32_t height) noexcept
{
    return width == kChartWidth && height == kChartHeight &&
           HasAllColors(coordinates.colorSwatches, colors.colorSwatches) &&
           HasAllColors(coordinates.legalRangeGradient, colors.legalRangeGradient) &&
           HasAllColors(coordinates.fullRangeGradient, colors.fullRangeGradient) &&
           LastRow(coordinates.colorSwatches) < FirstRow(coordinates.legalRangeGradient) &&
           LastRow(coordinates.legalRangeGradient) < FirstRow(coordinates.fullRangeGradient) &&
           LastRow(coordinates.fullRangeGradient) < kChartHeight;
}

void PaintChart(const SwatchCoordinates& coordinates, const SwatchColors& colors, const FrameView& view)
{
    const std::uint32_t upperBorder = BorderBetween(coordinates.colorSwatches, coordinates.legalRangeGradient);
    const std::uint32_t lowerBorder =
        BorderBetween(coordinates.legalRangeGradient, coordinates.fullRangeGradient);
    const PixelRange columns{.start = 0, .end = view.width};
    // Intended: the painter's status is not tested. In another format the chart is missing, not the frame.
    (void)PaintSwatches(coordinates.colorSwatches, columns, {.start = 0, .end = upperBorder},
                        colors.colorSwatches, view);
    (void)PaintSwatches(coordinates.legalRangeGradient, columns, {.start = upperBorder, .end = lowerBorder},
                        colors.legalRangeGradient, view);
    (void)PaintSwatches(coordinates.fullRangeGradient, columns, {.start = lowerBorder, .end = view.height},
                        colors.fullRangeGradient, view);
}

} // namespace ImporterTessel
