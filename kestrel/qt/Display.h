/// Whether Qt can open a window here.
#pragma once

#include <string>

namespace kestrelqt {

/// Qt ends the process when it cannot reach a window system, or lacks its plug-in for it. So this asks first,
/// in a process of its own where Qt has not been started yet.
///
/// @return empty where a window can be opened, else why not, in one line.
/// [ui-thread] Starts a program; costs as much as starting Qt.
[[nodiscard]] std::string WhyNoWindow();

} // namespace kestrelqt
