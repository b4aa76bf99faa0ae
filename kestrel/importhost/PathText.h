/// File names in messages, and which file names a clip may have. Threads: [thread-safe].
#pragma once

#include <kestrel/Export.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace importhost {

/// The name for one line of a message: UTF-8, what is no UTF-8 as U+FFFD, control characters as "\n" or
/// "\x1b".
[[nodiscard]] KESTRELHOST_API std::string DisplayName(const std::filesystem::path& file);

/// Any text made fit for one line in the same way.
[[nodiscard]] KESTRELHOST_API std::string OneLine(std::string_view text);

/// The name as plug-ins take it: absolute where that can be said in UTF-16, else as it is.
[[nodiscard]] KESTRELHOST_API std::u16string UTF16Path(const std::filesystem::path& file);

/// Plug-ins take file names as UTF-16, so a name has to be UTF-8 to reach one whole.
/// @throws HostError where it is not. Looks at the name only; opens and loads nothing.
KESTRELHOST_API void RequireUTF8Name(const std::filesystem::path& file);

} // namespace importhost
