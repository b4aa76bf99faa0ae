#include "GeometryFaults.h"

#include "Resampling.h"

#include <algorithm>
#include <cstddef>

namespace tessel::damage {
namespace {

/// Calls `work(source plane, target plane, shiftX, shiftY)` for each component that is there.
template <class Work>
WorkPicture EachPlane(const WorkPicture& picture, std::int32_t width, std::int32_t height, const Work& work)
{
    WorkPicture made = BlackLike(picture, width, height);
    for (std::size_t i = 0; i < made.planes.size(); ++i) {
        const bool isChroma = picture.IsYCbCr() && (i == 1 || i == 2);
        if (!made.planes[i].IsEmpty()) {
            work(picture.planes[i], made.planes[i], isChroma ? picture.chromaShiftX : 0,
                 isChroma ? picture.chromaShiftY : 0);
        }
    }
    return made;
}

/// Copies a rectangle; what lies outside of either plane is left out.
void CopyRectangle(const Plane& from, std::int32_t fromX, std::int32_t fromY, Plane& to, std::int32_t toX,
                   std::int32_t toY)
{
    const std::int32_t columns = std::min(from.width - fromX, to.width - toX);
    const std::int32_t rows = std::min(from.height - fromY, to.height - toY);
    for (std::int32_t y = 0; y < rows; ++y) {
        std::copy_n(from.Row(fromY + y) + fromX, std::max(columns, 0), to.Row(toY + y) + toX);
    }
}

} // namespace

WorkPicture Scaled(const WorkPicture& picture, std::int32_t width, std::int32_t height)
{
    return EachPlane(picture, width, height,
                     [](const Plane& from, Plane& to, int, int) { to = Stretched(from, to.width, to.height); });
}

WorkPicture Cropped(const WorkPicture& picture, const Margins& margins)
{
    return EachPlane(picture, picture.width - margins.left - margins.right,
                     picture.height - margins.top - margins.bottom,
                     [&](const Plane& from, Plane& to, int shiftX, int shiftY) {
                         CopyRectangle(from, margins.left >> shiftX, margins.top >> shiftY, to, 0, 0);
                     });
}

WorkPicture Padded(const WorkPicture& picture, const Margins& margins)
{
    return EachPlane(picture, picture.width + margins.left + margins.right,
                     picture.height + margins.top + margins.bottom,
                     [&](const Plane& from, Plane& to, int shiftX, int shiftY) {
                         CopyRectangle(from, 0, 0, to, margins.left >> shiftX, margins.top >> shiftY);
                     });
}

WorkPicture Shifted(const WorkPicture& picture, double right, double down)
{
    return EachPlane(picture, picture.width, picture.height,
                     [&](const Plane& from, Plane& to, int shiftX, int shiftY) {
                         to = Moved(from, right / (1 << shiftX), down / (1 << shiftY));
                     });
}

WorkPicture FlippedLeftRight(const WorkPicture& picture)
{
    return EachPlane(picture, picture.width, picture.height, [](const Plane& from, Plane& to, int, int) {
        for (std::int32_t y = 0; y < from.height; ++y) {
            std::reverse_copy(from.Row(y), from.Row(y) + from.width, to.Row(y));
        }
    });
}

WorkPicture FlippedTopBottom(const WorkPicture& picture)
{
    return EachPlane(picture, picture.width, picture.height, [](const Plane& from, Plane& to, int, int) {
        for (std::int32_t y = 0; y < from.height; ++y) {
            std::copy_n(from.Row(from.height - 1 - y), from.width, to.Row(y));
        }
    });
}

WorkPicture Turned(const WorkPicture& picture, int quarters)
{
    switch (quarters & 3) {
    case 0:
        return picture;
    case 2:
        return FlippedTopBottom(FlippedLeftRight(picture));
    default:
        break;
    }
    const bool isClockwise = (quarters & 3) == 1;
    WorkPicture turned = BlackLike(picture, picture.height, picture.width);
    for (std::size_t i = 0; i < turned.planes.size(); ++i) {
        const bool isChroma = picture.IsYCbCr() && (i == 1 || i == 2);
        const int shiftX = isChroma ? picture.chromaShiftX : 0;
        const int shiftY = isChroma ? picture.chromaShiftY : 0;
        Plane& to = turned.planes[i];
        if (to.IsEmpty()) {
            continue;
        }
        // Chroma that is not thinned alike along both axes has to be turned at full size.
        const Plane from = shiftX == shiftY ? picture.planes[i]
                                            : WithoutSubsampling(picture.planes[i], shiftX, shiftY,
                                                                 picture.width, picture.height);
        Plane whole(from.height, from.width);
        for (std::int32_t y = 0; y < whole.height; ++y) {
            for (std::int32_t x = 0; x < whole.width; ++x) {
                whole.Row(y)[x] =
                    isClockwise ? from.Row(from.height - 1 - x)[y] : from.Row(x)[from.width - 1 - y];
            }
        }
        to = shiftX == shiftY ? whole : WithSubsampling(whole, shiftX, shiftY);
    }
    return turned;
}

} // namespace tessel::damage
