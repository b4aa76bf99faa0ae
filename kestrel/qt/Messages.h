/// Qt's own messages.
#pragma once

namespace kestrelqt {

/// From now on Qt's warnings and worse go to the host's log, one line each with the context "qt", and its
/// chatter about what a platform lacks goes nowhere. A fatal message still ends the process. [ui-thread]
void SendQtMessagesToLog();

} // namespace kestrelqt
