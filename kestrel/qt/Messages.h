/// Qt's own messages.
#pragma once

class QString;

namespace kestrelqt {

/// From now on Qt's warnings and worse go to the host's log, one line each with the context "qt", and its
/// chatter about what a platform lacks goes nowhere. A fatal message still ends the process. [ui-thread]
void SendQtMessagesToLog();

/// Whether a message of Qt's tells a person nothing.
[[nodiscard]] bool IsChatter(const QString& text);

} // namespace kestrelqt
