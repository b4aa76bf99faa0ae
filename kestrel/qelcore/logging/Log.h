/// The host's log: messages with a context go to the listener, else to standard error.
#pragma once

#include <kestrel/Export.h>

#include <functional>
#include <string>
#include <string_view>

namespace qelcore::logging {

struct Message {
    std::string context; ///< where it comes from: a category or a function's name
    std::string text;    ///< one line of UTF-8, without a line end
};

/// Logs `text`. While at least one listener is registered on the calling thread the listeners get the
/// message and standard error does not. Threads: [thread-safe]. Never throws.
KESTREL_API void Log(std::string_view context, std::string_view text) noexcept;

/// Logs the exception being handled: its `what()`, or that it is unknown where it has none. Only inside a catch
/// block.
KESTREL_API void LogCurrentException(std::string_view context) noexcept;

/// Receives the messages that its own thread logs, from construction to destruction.
/// Listeners nest: the newest receives a message, the older ones do not.
class KESTREL_API ScopedListener {
public:
    using Handler = std::function<void(const Message&)>;

    explicit ScopedListener(Handler handler);
    ~ScopedListener();
    ScopedListener(const ScopedListener&) = delete;
    ScopedListener& operator=(const ScopedListener&) = delete;

private:
    friend void Log(std::string_view, std::string_view) noexcept;
    Handler mHandler;
    ScopedListener* mPrevious;
};

} // namespace qelcore::logging
