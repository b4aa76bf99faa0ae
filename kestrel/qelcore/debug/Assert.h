/// Assertion reports, and breaking into a debugger.
#pragma once

#include <kestrel/Export.h>

#include <string_view>

namespace qelcore::debug {

/// Reports a failed assertion to the host's log.
///
/// @param message   The text. Where it begins with a category, as in "plugin.Module  it broke" or
///                  "<plugin.Module> it broke", the report is filed under that; else under `function`.
/// @return true when the person asks to break into the debugger. This host does not ask: true exactly when
///         the environment variable `KESTREL_BREAK_ON_ASSERT` is "true".
/// Threads: [thread-safe]. Never throws.
[[nodiscard]] KESTREL_API bool DoSimpleAssert(std::string_view file, int line, std::string_view function,
                                              std::string_view condition, std::string_view message) noexcept;

/// Whether a debugger traces this process now. Threads: [thread-safe].
[[nodiscard]] KESTREL_API bool IsDebuggerAttached() noexcept;

/// Stops in the attached debugger. Only to be called where `IsDebuggerAttached()` is true; without one the
/// process would die. Threads: [any-thread].
KESTREL_API void BreakIntoDebugger() noexcept;

} // namespace qelcore::debug
