/// What models hold, as images of Qt's.
#pragma once

#include <tessel/export/convert/Picture.h>

#include <QImage>

namespace tessel::view {

/// A picture of four bytes per pixel: blue, green, red, and one that is not looked at. Shares the picture's
/// pixels, which must outlive it.
[[nodiscard]] QImage ImageOf(const exporting::Picture& picture);

/// Likewise, with premultiplied alpha in the fourth byte. Empty for an empty picture.
[[nodiscard]] QImage ImageWithAlphaOf(const exporting::Picture& picture);

} // namespace tessel::view
