/// Where a picture lies in a window, and which of its pixels is under the pointer.
#pragma once

#include <kestrel/qelmediatypes/PixelAspectRatio.h>

#include <cstdint>
#include <optional>

namespace tessel::view {

/// Device pixels of the screen.
struct Area {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
};

/// How large a picture is shown.
struct Zoom {
    /// 0: as large as it fits, in its true shape. Else each pixel of the picture is that many screen pixels
    /// wide and high, whatever its aspect: code pixels.
    int pixelScale = 0;
    /// The picture's middle is so many screen pixels right of and below the window's. Without meaning where it
    /// fits.
    double panX = 0;
    double panY = 0;
};

struct PictureSize {
    int width = 0;
    int height = 0;
    qelmediatypes::PixelAspectRatio pixelAspect;
};

/// The width of a pixel through its height; 1 where the clip does not say.
[[nodiscard]] double AspectOf(qelmediatypes::PixelAspectRatio aspect) noexcept;

/// @param window  of 1 pixel or more in both directions
[[nodiscard]] Area PlaceOf(const PictureSize& picture, const Area& window, const Zoom& zoom) noexcept;

/// The picture's pixel at a place of the window.
struct PixelPlace {
    int x = 0;
    int y = 0;

    bool operator==(const PixelPlace&) const = default;
};

/// @param place  of the picture, by `PlaceOf`
/// @return nothing beside the picture
[[nodiscard]] std::optional<PixelPlace> PixelAt(const PictureSize& picture, const Area& place, double x,
                                                double y) noexcept;

} // namespace tessel::view
