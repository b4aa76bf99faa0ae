/// Keeps exceptions out of Qt's event loop, which cannot pass them on.
#pragma once

#include <exception>
#include <functional>

namespace kestrelqt {

/// Exists during one modal run. An exception that an event throws during the run is kept and ends the run;
/// `Rethrow` then throws it to the caller of the run. Nests as modal windows do. [ui-thread]
class EventSeam {
public:
    /// @param endRun  Ends the modal run; called at most once for each kept exception, must not throw.
    explicit EventSeam(std::function<void()> endRun);
    ~EventSeam();
    EventSeam(const EventSeam&) = delete;
    EventSeam& operator=(const EventSeam&) = delete;

    /// Throws the kept exception, if there is one. Called after the run.
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
