/// Pictures for tests of damage.
#pragma once

#include <tessel/damage/picture/WorkPicture.h>

#include <array>
#include <cmath>
#include <cstdint>

namespace tessel::damage::testing {

/// A picture of one colour, by its codes or floats: R, G, B or Y', Cb, Cr.
inline WorkPicture Flat(exporting::PictureLayout layout, std::int32_t width, std::int32_t height,
                        std::array<double, 3> codes, const exporting::YCbCrCoding& coding = {})
{
    WorkPicture picture = Load(exporting::AllocatePicture(layout, width, height), coding);
    for (int component = 0; component < 4; ++component) {
        Plane& plane = picture.planes[static_cast<std::size_t>(component)];
        const CodeScale scale = CodeScaleOf(picture, component);
        const double value =
            component < 3 ? (codes[static_cast<std::size_t>(component)] - scale.zero) / scale.span : 1;
        plane.samples.assign(plane.samples.size(), static_cast<float>(value));
    }
    return picture;
}

/// The code that a component is stored as at a place.
inline long CodeAt(const WorkPicture& picture, int component, std::int32_t x, std::int32_t y)
{
    const CodeScale scale = CodeScaleOf(picture, component);
    const float value = picture.planes[static_cast<std::size_t>(component)].Row(y)[x];
    return std::lround(static_cast<double>(value) * scale.span + scale.zero);
}

/// A plane whose sample (x, y) is 100 y + x.
inline WorkPicture Numbered(exporting::PictureLayout layout, std::int32_t width, std::int32_t height)
{
    WorkPicture picture = Load(exporting::AllocatePicture(layout, width, height), {});
    for (Plane& plane : picture.planes) {
        for (std::int32_t y = 0; y < plane.height; ++y) {
            for (std::int32_t x = 0; x < plane.width; ++x) {
                plane.Row(y)[x] = static_cast<float>(100 * y + x);
            }
        }
    }
    return picture;
}

} // namespace tessel::damage::testing
