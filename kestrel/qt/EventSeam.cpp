#include "EventSeam.h"

#include <kestrel/qelcore/logging/Log.h>

#include <utility>

namespace kestrelqt {

namespace {

EventSeam* gInnermost = nullptr; // used on the ui thread only

} // namespace

EventSeam::EventSeam(std::function<void()> endRun) : mEndRun(std::move(endRun)), mOuter(gInnermost)
{
    gInnermost = this;
}

EventSeam::~EventSeam()
{
    gInnermost = mOuter;
}

void EventSeam::Rethrow()
{
    if (mKept) {
        std::rethrow_exception(std::exchange(mKept, nullptr));
    }
}

void EventSeam::Keep(std::exception_ptr exception) noexcept
{
    if (gInnermost == nullptr) {
        try {
            std::rethrow_exception(exception);
        } catch (...) {
            qelcore::logging::LogCurrentException("qt");
        }
        return;
    }
    // The first exception is the cause; later ones may follow from it.
    if (!gInnermost->mKept) {
        gInnermost->mKept = std::move(exception);
    }
    gInnermost->mEndRun();
}

} // namespace kestrelqt
