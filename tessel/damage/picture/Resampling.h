/// Planes at other places and sizes.
#pragma once

#include "WorkPicture.h"

namespace tessel::damage {

/// The plane's value at a place between samples, linear between the four around it; edges repeat.
[[nodiscard]] float ValueAt(const Plane& plane, double x, double y) noexcept;

/// The content moved right and down by so many samples, which may be fractions; edges repeat.
[[nodiscard]] Plane Moved(const Plane& plane, double right, double down);

/// The content stretched to another size, linear between samples; where it shrinks, the mean of what each new
/// sample covers. Centres of the outer edges stay where they are.
[[nodiscard]] Plane Stretched(const Plane& plane, std::int32_t width, std::int32_t height);

/// A chroma plane at the size of luma: linear between columns 0, 2, 4, ..., rows repeated.
[[nodiscard]] Plane WithoutSubsampling(const Plane& chroma, int shiftX, int shiftY, std::int32_t width,
                                       std::int32_t height);

/// The way back: even columns, the mean of the rows that share a chroma row.
[[nodiscard]] Plane WithSubsampling(const Plane& full, int shiftX, int shiftY);

} // namespace tessel::damage
