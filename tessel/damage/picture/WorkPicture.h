/// A picture in floats, in the components that the file has, for arithmetic that no encoder's layout allows.
#pragma once

#include <tessel/export/convert/Conversion.h>
#include <tessel/export/convert/Picture.h>

#include <array>
#include <cstdint>
#include <vector>

namespace tessel::damage {

/// One component, rows without gaps.
struct Plane {
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<float> samples;

    Plane() = default;
    Plane(std::int32_t planeWidth, std::int32_t planeHeight)
        : width(planeWidth), height(planeHeight),
          samples(static_cast<std::size_t>(planeWidth) * static_cast<std::size_t>(planeHeight))
    {
    }

    [[nodiscard]] bool IsEmpty() const noexcept { return samples.empty(); }
    [[nodiscard]] float* Row(std::int32_t y) noexcept
    {
        return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
    [[nodiscard]] const float* Row(std::int32_t y) const noexcept
    {
        return samples.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};

/// R', G', B' and alpha 0..1, or Y' 0..1, Cb and Cr -0.5..0.5 and alpha 0..1; values outside are kept. Chroma
/// planes are as small as the layout has them, co-sited with even columns.
struct WorkPicture {
    exporting::PictureLayout layout = exporting::PictureLayout::Bgra; ///< of the picture it came from
    exporting::ColorFamily family = exporting::ColorFamily::Rgb;
    exporting::YCbCrCoding coding; ///< what the codes of a Y'CbCr picture mean
    int codeBits = 8;              ///< of an integer sample; 0 for floats
    int chromaShiftX = 0;          ///< log2
    int chromaShiftY = 0;          ///< log2
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::array<Plane, 4> planes; ///< the last one is empty where there is no alpha

    [[nodiscard]] bool HasAlpha() const noexcept { return !planes[3].IsEmpty(); }
    [[nodiscard]] bool IsYCbCr() const noexcept { return family == exporting::ColorFamily::YCbCr; }
};

/// A code value of component `component` as a float, and back: value = (code - zero) / span.
struct CodeScale {
    double zero = 0;
    double span = 1;
    double highest = 1; ///< the largest code
};
[[nodiscard]] CodeScale CodeScaleOf(const WorkPicture& picture, int component) noexcept;

/// Takes a picture apart. Loading and storing without a change gives the same codes.
/// @param coding  of a Y'CbCr picture
[[nodiscard]] WorkPicture Load(const exporting::Picture& picture, const exporting::YCbCrCoding& coding);

/// Puts it together in its layout and size, rounded to the nearest code and kept within the codes that exist.
[[nodiscard]] exporting::Picture Store(const WorkPicture& picture);

/// A black and opaque picture like `like`, of another size.
[[nodiscard]] WorkPicture BlackLike(const WorkPicture& like, std::int32_t width, std::int32_t height);

} // namespace tessel::damage
