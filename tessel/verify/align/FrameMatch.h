/// Where a frame lies in a picture of another size, by what both show.
#pragma once

#include "Placement.h"

#include <tessel/verify/read/Movie.h>

#include <optional>

namespace tessel::verify::align {

/// For pictures whose number cannot be read because some of it is cut off. Compares the picture with the frame
/// in every whole-pixel place in which the smaller of the two lies inside the other, in width and in height,
/// and with the frame stretched over the picture. Levels need not agree.
///
/// @param clip   luma of the frame that the picture most likely shows; another frame of the same clip will
/// often do
/// @param movie  luma of the picture
/// @return the place that fits plainly better than the stretched frame; nothing where none does, or where both
///         have the same size. Along an axis on which nothing tells, the middle.
/// Threads: [any-thread]. Cost: at most some fifty million comparisons of samples.
[[nodiscard]] std::optional<Placement> MatchFrame(const read::ComponentView& clip,
                                                  const read::ComponentView& movie);

} // namespace tessel::verify::align
