/// Writing a repeating 16-byte pattern at memory speed.
#pragma once

#include "ColorConversion.h"

#include <bit>
#include <cstddef>
#include <cstdint>

namespace pixmill {

/// A `FillPattern` in two little-endian words. Between the conversion of a colour and the wide stores a pattern
/// travels like this, in registers: put together in memory from narrow stores and read back at once, it would
/// have to wait until the row painted before has left the store queue, a fifth of the time of a short row.
struct FillWords {
    std::uint64_t low, high;
};

/// Writes `byteCount` bytes of the pattern, which starts anew at `row`.
///
/// @param row        Borrowed; any alignment; exactly `byteCount` bytes are written.
/// @param byteCount  A multiple of 4.
/// @param ahead      How many bytes on memory is fetched while this is written: the way to the next row, or
/// some
///                   KiB in a long run; 0 where nothing follows. Only a hint: nothing is touched there.
void FillRow(std::byte* row, std::size_t byteCount, FillWords pattern, std::ptrdiff_t ahead) noexcept;

/// The same for `rows` rows that do not follow one upon the other, such as those of one field.
///
/// @param step  Bytes from one row to the next; may be negative.
void FillSeparateRows(std::byte* row, std::ptrdiff_t step, std::size_t byteCount, std::uint32_t rows,
                      FillWords pattern) noexcept;

} // namespace pixmill
