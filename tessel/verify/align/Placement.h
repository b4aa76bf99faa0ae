/// Where a clip's frame lies in a movie's picture.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace tessel::verify::align {

/// What was done to the frame before it was scaled and moved: turned clockwise, then mirrored left to right.
enum class Orientation : std::uint8_t {
    Upright,
    Turned90,
    Turned180,
    Turned270,
    Mirrored,         ///< left and right exchanged
    Mirrored90,       ///< transposed: rows become columns
    MirroredVertical, ///< top and bottom exchanged
    Mirrored270,      ///< transposed along the other diagonal
};
inline constexpr std::array kOrientations{
    Orientation::Upright,  Orientation::Mirrored,  Orientation::MirroredVertical, Orientation::Turned180,
    Orientation::Turned90, Orientation::Turned270, Orientation::Mirrored90,       Orientation::Mirrored270};

[[nodiscard]] constexpr bool ExchangesSides(Orientation orientation) noexcept
{
    return orientation == Orientation::Turned90 || orientation == Orientation::Turned270 ||
           orientation == Orientation::Mirrored90 || orientation == Orientation::Mirrored270;
}

struct Point {
    double x = 0;
    double y = 0;
};

/// An axis-parallel rectangle; the right and bottom edges are outside.
struct Box {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
};

/// Maps places of the clip's frame to places of the movie's picture. Places are continuous: pixel (0, 0)
/// covers 0..1 in both.
struct Placement {
    int clipWidth = 0; ///< pixels
    int clipHeight = 0;
    Orientation orientation = Orientation::Upright;
    double scaleX = 1; ///< movie pixels per pixel of the oriented frame
    double scaleY = 1;
    double offsetX = 0; ///< movie pixels from the picture's left edge to the oriented frame's
    double offsetY = 0;

    /// The frame stretched over the whole picture.
    [[nodiscard]] static Placement Stretched(int clipWidth, int clipHeight, Orientation orientation, int width,
                                             int height) noexcept;

    [[nodiscard]] Point Map(Point clip) const noexcept;
    [[nodiscard]] Box Map(const Box& clip) const noexcept;
};

} // namespace tessel::verify::align
