/// Where exceptions stop before they reach Qt's event loop, which cannot pass them on.
#pragma once

#include <exception>
#include <functional>

namespace kestrelqt {

/// Stands around one modal run. What is thrown in an event meanwhile is kept, the run ends, and `Rethrow`
/// throws it where C++ code waits for the run's result. Seams nest as modal windows do. [ui-thread]
class EventSeam {
public:
    /// @param endRun  Ends the modal run; called at most once for each kept exception, must not throw.
    explicit EventSeam(std::function<void()> endRun);
    ~EventSeam();
    EventSeam(const EventSeam&) = delete;
    EventSeam& operator=(const EventSeam&) = delete;

    /// After the run: throws what was kept, if anything was.
    void Rethrow();

    /// Keeps an exception in the innermost seam, the first one where there are several, and ends its run.
    /// Without a seam the exception is logged.
    static void Keep(std::exception_ptr exception) noexcept;

private:
    std::function<void()> mEndRun;
    std::exception_ptr mKept;
    EventSeam* mOuter;
};

/// Calls `act` from within an event.
template <class Act>
void AtSeam(Act&& act) noexcept
{
    try {
        act();
    } catch (...) {
        EventSeam::Keep(std::current_exception());
    }
}

} // namespace kestrelqt
