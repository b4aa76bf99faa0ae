/// How far the work is.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tessel::exporting {

/// Hears of progress. [any-thread], one call at a time.
class ProgressListener {
public:
    ProgressListener() = default;
    ProgressListener(const ProgressListener&) = delete;
    ProgressListener& operator=(const ProgressListener&) = delete;
    virtual ~ProgressListener() = default;
    /// @param unit  what is counted: "frames", "seconds"
    virtual void Report(std::int64_t done, std::int64_t total, const char* unit) = 0;
};

/// Tells a listener, which may be null, of work that a person may end at any time.
/// @throws Interrupted  where a signal has asked for it
void ReportProgress(ProgressListener* listener, std::int64_t done, std::int64_t total, const char* unit);

/// A bar on standard error, redrawn ten times a second and wiped at the end.
class ProgressBar final : public ProgressListener {
public:
    explicit ProgressBar(std::string name);
    ~ProgressBar() override;
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    void Report(std::int64_t done, std::int64_t total, const char* unit) override;

private:
    using Clock = std::chrono::steady_clock;

    std::string mName;
    Clock::time_point mStart = Clock::now();
    Clock::time_point mDrawn;
    bool mShown = false;
};

} // namespace tessel::exporting
