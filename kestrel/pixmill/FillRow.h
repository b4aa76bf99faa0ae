/// Writing a repeating 16-byte pattern at memory speed.
#pragma once

#include "ColorConversion.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace pixmill {

/// A `FillPattern` in two little-endian words: from the conversion of a colour to the wide stores a pattern
/// stays in registers. Written to memory by narrow stores and loaded at once, it would wait until the row
/// painted before has left the store queue: a fifth of the time of a short row.
struct FillWords {
    std::uint64_t low, high;
};

/// Writes `byteCount` bytes of the pattern, which starts anew at `row`.
///
/// @param row        Borrowed; any alignment; exactly `byteCount` bytes are written.
/// @param byteCount  A multiple of 4.
/// @param ahead      How many bytes ahead memory is prefetched: the distance to the next row, or some KiB in a
///                   long run; 0 where nothing follows. Nothing is read or written there.
void FillRow(std::byte* row, std::size_t byteCount, FillWords pattern, std::ptrdiff_t ahead) noexcept;

/// The same for `rows` rows that do not follow one upon the other, such as those of one field.
///
/// @param step  Bytes from one row to the next; may be negative.
void FillSeparateRows(std::byte* row, std::ptrdiff_t step, std::size_t byteCount, std::uint32_t rows,
                      FillWords pattern) noexcept;

} // namespace pixmill
