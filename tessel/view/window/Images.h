/// What models hold, as images of Qt's.
#pragma once

#include <tessel/export/convert/Picture.h>
#include <tessel/scopes/CodeCheck.h>

#include <QImage>

namespace tessel::view {

/// A picture of four bytes per pixel: blue, green, red, and one that is not looked at. Shares the picture's
/// pixels, which must outlive it.
[[nodiscard]] QImage ImageOf(const exporting::Picture& picture);

/// Transparent, but for pixels with faults: magenta for reserved codes, red outside the range, yellow outside
/// the gamut.
[[nodiscard]] QImage OverlayOf(const scopes::CodeFaults& faults);

} // namespace tessel::view
