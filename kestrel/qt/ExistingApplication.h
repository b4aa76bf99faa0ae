/// The Qt application that a host has made before the toolkit was asked for.
#pragma once

#include <string>

namespace kestrelqt {

/// Whether the process has a Qt application of any kind.
[[nodiscard]] bool HasApplication() noexcept;

/// @return empty where windows can be opened in that application from this thread, else why not, in one line.
///         Qt would end the process, or worse.
[[nodiscard]] std::string WhyNotThisApplication();

} // namespace kestrelqt
