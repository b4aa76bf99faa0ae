/// What became of the files that somebody saved, for a program that must know although the saver ignored it.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <functional>
#include <string>

namespace ORB {

/// One save through `File::Create` and `File::Write`, finished or failed.
struct SaveReport {
    std::u16string path;     ///< as it was given to `File::Create`
    std::int32_t status = 0; ///< a `Status`, negative for a failure
    std::string failure;     ///< why it failed, such as "the disk is full"; empty after success
};

/// Hears of each save that its own thread makes, from construction to destruction.
/// Listeners nest: the newest hears a report, the older ones do not.
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

/// Gives a report to the calling thread's listener, if there is one. What it throws is dropped.
KESTREL_API void ReportSave(const SaveReport& report) noexcept;

} // namespace ORB
