/// Faults of geometry. Each returns the changed picture; those that change its size say so.
/// Threads: [any-thread].
#pragma once

#include "WorkPicture.h"

namespace tessel::damage {

/// Pixels at the four edges.
struct Margins {
    std::int32_t left = 0;
    std::int32_t right = 0;
    std::int32_t top = 0;
    std::int32_t bottom = 0;
};

/// @return a picture of `width` by `height`
[[nodiscard]] WorkPicture Scaled(const WorkPicture& picture, std::int32_t width, std::int32_t height);

/// Without the margins. @return a smaller picture
[[nodiscard]] WorkPicture Cropped(const WorkPicture& picture, const Margins& margins);

/// With black margins. @return a larger picture
[[nodiscard]] WorkPicture Padded(const WorkPicture& picture, const Margins& margins);

/// The content moved right and down by so many pixels, which may be fractions; edges repeat.
[[nodiscard]] WorkPicture Shifted(const WorkPicture& picture, double right, double down);

[[nodiscard]] WorkPicture FlippedLeftRight(const WorkPicture& picture);
[[nodiscard]] WorkPicture FlippedTopBottom(const WorkPicture& picture);

/// Turned clockwise by 90 degrees `quarters` times. @return width and height exchanged for an odd number
[[nodiscard]] WorkPicture Turned(const WorkPicture& picture, int quarters);

} // namespace tessel::damage
