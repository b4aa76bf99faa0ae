#include "Fitting.h"

#include <algorithm>
#include <cmath>

namespace tessel::view {

double AspectOf(qelmediatypes::PixelAspectRatio aspect) noexcept
{
    return aspect.GetNumerator() > 0 && aspect.GetDenominator() > 0
               ? static_cast<double>(aspect.GetNumerator()) / aspect.GetDenominator()
               : 1.0;
}

Area PlaceOf(const PictureSize& picture, const Area& window, const Zoom& zoom) noexcept
{
    double width = picture.width;
    double height = picture.height;
    double panX = 0;
    double panY = 0;
    if (zoom.pixelScale > 0) {
        width *= zoom.pixelScale;
        height *= zoom.pixelScale;
        panX = zoom.panX;
        panY = zoom.panY;
    } else {
        width *= AspectOf(picture.pixelAspect);
        const double scale = std::min(window.width / width, window.height / height);
        width *= scale;
        height *= scale;
    }
    // On whole pixels, or code pixels would be of unequal width.
    return {window.left + std::floor((window.width - width) / 2 + panX),
            window.top + std::floor((window.height - height) / 2 + panY), std::max(1.0, std::round(width)),
            std::max(1.0, std::round(height))};
}

std::optional<PixelPlace> PixelAt(const PictureSize& picture, const Area& place, double x, double y) noexcept
{
    const double column = std::floor((x - place.left) * picture.width / place.width);
    const double row = std::floor((y - place.top) * picture.height / place.height);
    if (!(column >= 0 && column < picture.width && row >= 0 && row < picture.height)) {
        return std::nullopt;
    }
    return PixelPlace{static_cast<int>(column), static_cast<int>(row)};
}

} // namespace tessel::view
