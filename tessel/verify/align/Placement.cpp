#include "Placement.h"

#include <algorithm>

namespace tessel::verify::align {

Placement Placement::Stretched(int clipWidth, int clipHeight, Orientation orientation, int width,
                               int height) noexcept
{
    const bool exchanges = ExchangesSides(orientation);
    Placement placement;
    placement.clipWidth = clipWidth;
    placement.clipHeight = clipHeight;
    placement.orientation = orientation;
    placement.scaleX = static_cast<double>(width) / (exchanges ? clipHeight : clipWidth);
    placement.scaleY = static_cast<double>(height) / (exchanges ? clipWidth : clipHeight);
    return placement;
}

Point Placement::Map(Point clip) const noexcept
{
    const double w = clipWidth;
    const double h = clipHeight;
    Point at = clip;
    switch (orientation) {
    case Orientation::Upright:
        break;
    case Orientation::Turned90:
        at = {h - clip.y, clip.x};
        break;
    case Orientation::Turned180:
        at = {w - clip.x, h - clip.y};
        break;
    case Orientation::Turned270:
        at = {clip.y, w - clip.x};
        break;
    case Orientation::Mirrored:
        at = {w - clip.x, clip.y};
        break;
    case Orientation::Mirrored90:
        at = {clip.y, clip.x};
        break;
    case Orientation::MirroredVertical:
        at = {clip.x, h - clip.y};
        break;
    case Orientation::Mirrored270:
        at = {h - clip.y, w - clip.x};
        break;
    }
    return {at.x * scaleX + offsetX, at.y * scaleY + offsetY};
}

Box Placement::Map(const Box& clip) const noexcept
{
    const Point a = Map(Point{clip.left, clip.top});
    const Point b = Map(Point{clip.right, clip.bottom});
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

} // namespace tessel::verify::align
