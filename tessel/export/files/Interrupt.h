/// Being told to stop.
#pragma once

namespace tessel::exporting {

/// While one lives, SIGINT, SIGTERM and SIGHUP are noted instead of ending the process, so that work can clean
/// up; a second one ends it at once. One at a time in a process. [ui-thread]
class InterruptGuard {
public:
    InterruptGuard();
    ~InterruptGuard();
    InterruptGuard(const InterruptGuard&) = delete;
    InterruptGuard& operator=(const InterruptGuard&) = delete;

    /// Whether a signal came. [any-thread]
    [[nodiscard]] static bool Requested() noexcept;

    /// @throws Interrupted  where a signal came. [any-thread]
    static void ThrowIfRequested();

    /// Ends the process as the noted signal would have, so that shells and scripts see why. Returns where
    /// none was noted.
    static void EndAsSignalled() noexcept;
};

/// Thrown by work that noticed the request.
struct Interrupted {};

} // namespace tessel::exporting
