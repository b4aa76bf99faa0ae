/// Whether Qt can open a window here.
#pragma once

#include <string>

namespace kestrelqt {

/// Qt ends the process if it cannot reach a window system or has no plug-in for it. Therefore this starts Qt
/// in another process first. Where the process has a Qt application already, it checks that one.
///
/// @return empty where a window can be opened, else why not, in one line.
/// [ui-thread] Starts a program; costs as much as starting Qt.
[[nodiscard]] std::string WhyNoWindow();

} // namespace kestrelqt
