#include "Progress.h"

#include <tessel/export/files/Interrupt.h>

#include <fmt/format.h>

#include <cstdio>
#include <utility>

namespace tessel::exporting {

void ReportProgress(ProgressListener* listener, std::int64_t done, std::int64_t total, const char* unit)
{
    InterruptGuard::ThrowIfRequested();
    if (listener != nullptr) {
        listener->Report(done, total, unit);
    }
}

ProgressBar::ProgressBar(std::string name) : mName(std::move(name)) {}

ProgressBar::~ProgressBar()
{
    if (mShown) {
        std::fputs("\r\x1b[K", stderr); // back to the line's start, and erase it
    }
}

void ProgressBar::Report(std::int64_t done, std::int64_t total, const char* unit)
{
    constexpr auto kBetweenDrawings = std::chrono::milliseconds(100);
    constexpr std::int64_t kCells = 24;
    const Clock::time_point now = Clock::now();
    if (total <= 0 || now - mDrawn < kBetweenDrawings) {
        return;
    }
    mDrawn = now;
    mShown = true;
    const double seconds = std::chrono::duration<double>(now - mStart).count();
    const double rate = seconds > 0.0 ? static_cast<double>(done) / seconds : 0.0;
    const auto filled = static_cast<std::size_t>(done * kCells / total);
    const std::string bar =
        std::string(filled, '#') + std::string(static_cast<std::size_t>(kCells) - filled, '.');
    std::string line = fmt::format("\r\x1b[K{} [{}] {:3} % {}/{} {}, {:.0f} a second", mName, bar,
                                   done * 100 / total, done, total, unit, rate);
    if (rate > 0.0) {
        const auto left = static_cast<std::int64_t>(static_cast<double>(total - done) / rate + 0.5);
        line += fmt::format(", {}:{:02}:{:02} left", left / 3600, left / 60 % 60, left % 60);
    }
    std::fputs(line.c_str(), stderr);
    std::fflush(stderr);
}

} // namespace tessel::exporting
