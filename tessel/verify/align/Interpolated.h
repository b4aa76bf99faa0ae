/// Values of a picture between its samples.
#pragma once

#include "Placement.h"

#include <tessel/verify/read/Movie.h>

#include <algorithm>

namespace tessel::verify::align {

/// Linear between pixel centres, edges repeated.
[[nodiscard]] inline double Interpolated(const read::ComponentView& view, Point at) noexcept
{
    const double x = std::clamp(at.x - 0.5, 0.0, view.width - 1.0);
    const double y = std::clamp(at.y - 0.5, 0.0, view.height - 1.0);
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const int right = std::min(left + 1, view.width - 1);
    const int bottom = std::min(top + 1, view.height - 1);
    const double shareX = x - left;
    const double shareY = y - top;
    const double upper = view.At(left, top) * (1 - shareX) + view.At(right, top) * shareX;
    const double lower = view.At(left, bottom) * (1 - shareX) + view.At(right, bottom) * shareX;
    return upper * (1 - shareY) + lower * shareY;
}

} // namespace tessel::verify::align
