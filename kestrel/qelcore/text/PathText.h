/// Paths as text. A path's own units are bytes on some platforms and 16-bit units on others, and its `string()`
/// is in the platform's encoding, so neither is text.
#pragma once

#include <kestrel/Export.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace qelcore::text {

/// The path as UTF-8; on platforms whose names are bytes, those bytes, whatever they are.
/// Threads: [any-thread].
[[nodiscard]] KESTREL_API std::string UTF8Text(const std::filesystem::path& path);

/// The path that a UTF-8 text names. Threads: [any-thread].
[[nodiscard]] KESTREL_API std::filesystem::path PathOf(std::string_view utf8);

} // namespace qelcore::text
