#include "Images.h"

namespace tessel::view {
namespace {

QImage ImageAs(const exporting::Picture& picture, QImage::Format format)
{
    if (picture.width == 0) {
        return {};
    }
    return {reinterpret_cast<const uchar*>(picture.planes[0]), picture.width, picture.height,
            picture.rowBytes[0], format};
}

} // namespace

QImage ImageOf(const exporting::Picture& picture)
{
    return ImageAs(picture, QImage::Format_RGB32);
}

QImage ImageWithAlphaOf(const exporting::Picture& picture)
{
    return ImageAs(picture, QImage::Format_ARGB32_Premultiplied);
}

} // namespace tessel::view
