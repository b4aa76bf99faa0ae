/// Faults of fields: lines that come from the wrong field or frame. Upper means lines 0, 2, 4, ...
/// Threads: [any-thread].
#pragma once

#include "WorkPicture.h"

namespace tessel::damage {

enum class Parity { Upper, Lower };

/// The fields exchange their lines: 0 and 1, 2 and 3, and so on.
[[nodiscard]] WorkPicture WithFieldsSwapped(const WorkPicture& picture);

/// Upper lines of one picture, lower lines of another of the same size.
[[nodiscard]] WorkPicture Woven(const WorkPicture& upper, const WorkPicture& lower);

/// Each line becomes the mean of the pair of lines that it belongs to.
[[nodiscard]] WorkPicture WithFieldsBlended(const WorkPicture& picture);

/// One field shown twice: each of its lines stands for the other field's line of its pair, too.
[[nodiscard]] WorkPicture LineDoubled(const WorkPicture& picture, Parity kept);

/// One field kept, the other one's lines interpolated between their neighbours.
[[nodiscard]] WorkPicture Deinterlaced(const WorkPicture& picture, Parity kept);

} // namespace tessel::damage
