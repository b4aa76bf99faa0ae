/// Reading a small file at once.
#pragma once

#include <kestrel/Export.h>

#include <filesystem>
#include <optional>
#include <string>

namespace qelcore::files {

/// All bytes of an ordinary file.
/// @return nothing where `file` is not an ordinary file or cannot be opened or read to its end. A pipe is not
///         opened, because that would wait for its writer.
/// @throws std::bad_alloc. Threads: [thread-safe].
[[nodiscard]] KESTREL_API std::optional<std::string> ReadWholeFile(const std::filesystem::path& file);

} // namespace qelcore::files
