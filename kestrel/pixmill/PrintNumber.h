/// Printing a number into a picture.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>

/// Prints a number on an opaque plate: fixed-width digits, zero-padded to at least six, white on black,
/// smooth edges, upright as the picture is shown.
///
/// @param pixels    First row in memory, or its last with a negative `rowBytes`; borrowed for the call.
/// @param rowBytes  Bytes from one row to the next. In code 260 (stored bottom row first) a positive step
///                  means bottom row first and a negative one top row first; in all others `pixels` is the
///                  top row.
/// @param destCode  The image library's code of a paintable format.
/// @param width,height  Pixels of the frame; nothing outside is written.
/// @param number    Any; a minus sign stands before the digits.
/// @param textHeight  Height of the digits as a fraction of the frame's height; 0.12 is usual. The plate
///                  shrinks to fit a narrow frame.
/// @param position  Left and top edge of the plate as fractions of width and height.
/// @param opaque    Draws the plate; without it only the digits are drawn.
/// @return 0, or a negative status with the picture untouched.
/// Threads: [any-thread] on different frames. Never throws.
KESTREL_API std::int32_t PM_PrintNum(void* pixels, std::int32_t rowBytes, std::uint32_t destCode,
                                     std::uint32_t width, std::uint32_t height, std::int32_t number,
                                     float textHeight, const float position[2], bool opaque) noexcept;
