/// The results of saving files, for a program whose plug-in ignores them.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <functional>
#include <string>

namespace ORB {

/// The result of one save through `File::Create` and `File::Write`.
struct SaveReport {
    std::u16string path;     ///< as it was given to `File::Create`
    std::int32_t status = 0; ///< a `Status`, negative for a failure
    std::string failure;     ///< why it failed, such as "the disk is full"; empty after success
};

/// Receives the result of each save on its own thread, from construction to destruction.
/// Only the newest listener receives a report; calling `ReportSave` in its handler passes it on to the next
/// older. Threads: [any-thread].
class KESTREL_API ScopedSaveListener {
public:
    using Handler = std::function<void(const SaveReport&)>;

    explicit ScopedSaveListener(Handler handler);
    ~ScopedSaveListener();
    ScopedSaveListener(const ScopedSaveListener&) = delete;
    ScopedSaveListener& operator=(const ScopedSaveListener&) = delete;

private:
    friend void ReportSave(const SaveReport& report) noexcept;
    Handler mHandler;
    ScopedSaveListener* mPrevious;
};

/// Gives a report to the calling thread's listener, if there is one. An exception of the listener is logged.
/// Threads: [thread-safe].
KESTREL_API void ReportSave(const SaveReport& report) noexcept;

} // namespace ORB
