/// Writing a repeating 16-byte pattern at memory speed.
#pragma once

#include "ColorConversion.h"

#include <cstddef>

namespace pixmill {

using FillPattern = decltype(StoredColor::pattern);

/// Writes `byteCount` bytes of the pattern, which starts anew at `row`.
///
/// @param row        Borrowed; any alignment; exactly `byteCount` bytes are written.
/// @param byteCount  A multiple of 4.
/// Threads: [any-thread].
void FillRow(std::byte* row, std::size_t byteCount, const FillPattern& pattern) noexcept;

} // namespace pixmill
