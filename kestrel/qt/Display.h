/// Whether Qt could open a window here.
#pragma once

namespace kestrelqt {

/// Qt ends the process when it cannot reach the window system that it chose, so this asks first.
///
/// @return null where a window can be opened, else why not: one line of static text. [ui-thread]
[[nodiscard]] const char* WhyNoWindow();

} // namespace kestrelqt
