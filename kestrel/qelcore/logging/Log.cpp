#include "Log.h"

#include <cstdio>
#include <exception>
#include <utility>

namespace qelcore::logging {
namespace {

/// The newest listener of this thread; null without one.
thread_local ScopedListener* tListener = nullptr;

constexpr const char* kUnknownException = "unknown exception";

/// One line: line ends and other control characters become spaces.
std::string OneLine(std::string_view text)
{
    std::string line(text);
    for (char& letter : line) {
        if (static_cast<unsigned char>(letter) < 0x20) {
            letter = ' ';
        }
    }
    return line;
}

void WriteToStandardError(const Message& message)
{
    // One call, so that lines of several threads do not mix.
    const std::string line = message.context + ": " + message.text + "\n";
    (void)std::fwrite(line.data(), 1, line.size(), stderr);
}

} // namespace

void Log(std::string_view context, std::string_view text) noexcept
{
    ScopedListener* const listener = tListener;
    try {
        const Message message{OneLine(context), OneLine(text)};
        if (listener == nullptr) {
            WriteToStandardError(message);
            return;
        }
        // What a handler logs goes to the next older listener, so that no handler calls itself.
        tListener = listener->mPrevious;
        listener->mHandler(message);
    } catch (...) {
        (void)std::fputs("A log message was lost.\n", stderr);
    }
    tListener = listener;
}

void LogCurrentException(std::string_view context) noexcept
{
    try {
        throw;
    } catch (const std::exception& exception) {
        const char* const what = exception.what();
        Log(context, what == nullptr ? kUnknownException : what);
    } catch (...) {
        Log(context, kUnknownException);
    }
}

ScopedListener::ScopedListener(Handler handler) : mHandler(std::move(handler)), mPrevious(tListener)
{
    tListener = this;
}

ScopedListener::~ScopedListener()
{
    tListener = mPrevious;
}

} // namespace qelcore::logging
