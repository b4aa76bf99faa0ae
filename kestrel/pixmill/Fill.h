/// Filling rectangles with one colour.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>

/// Fills `rows` rows of `width` pixels with one colour.
///
/// The colour is converted once and then written. Integer targets round to nearest and clamp; Y'CbCr
/// follows ITU-R BT.601-7 and BT.709-6 in limited range and is clipped to 1..254 (8 bit) and 4..1019
/// (10 bit). Float targets do not clamp. For every target but plain float R'G'B', which takes the numbers
/// as they are, NaN counts as 0 and an infinity as the largest float.
///
/// @param pixels       First pixel of the first row to write; borrowed for the call. Any alignment.
/// @param rowBytes     Bytes from one row to the next; negative walks upwards. Bytes after a row's last
///                     pixel (v210: last group of 6; 4:2:2: last pair) stay as they are.
/// @param width        Pixels per row; 0 writes nothing.
/// @param rows         Rows; 0 writes nothing.
/// @param destCode     The image library's code of a paintable format.
/// @param color        Four floats in blue, green, red, alpha order; any alignment.
/// @param colorCode    260, the code of that layout.
/// @return 0, or a negative status with the destination untouched: a code that cannot be painted, a colour
///         code other than 260, a null pointer.
/// Threads: [any-thread], also at once on rectangles that do not overlap. Never throws, never allocates.
KESTREL_API std::int32_t PM_FillWithColor(void* pixels, std::int32_t rowBytes, std::uint32_t width,
                                          std::uint32_t rows, std::uint32_t destCode, const void* color,
                                          std::uint32_t colorCode) noexcept;
