#include "SaveReport.h"

#include <kestrel/qelcore/logging/Log.h>

#include <utility>

namespace ORB {
namespace {

/// The listener that this thread added last; null if the thread has no listener.
thread_local ScopedSaveListener* tListener = nullptr;

} // namespace

ScopedSaveListener::ScopedSaveListener(Handler handler) : mHandler(std::move(handler)), mPrevious(tListener)
{
    tListener = this;
}

ScopedSaveListener::~ScopedSaveListener()
{
    tListener = mPrevious;
}

void ReportSave(const SaveReport& report) noexcept
{
    ScopedSaveListener* const listener = tListener;
    if (listener == nullptr) {
        return;
    }
    // What a handler reports goes to the next older listener, so that it can pass a report on.
    tListener = listener->mPrevious;
    try {
        listener->mHandler(report);
    } catch (...) {
        qelcore::logging::LogCurrentException("ORB::ReportSave");
    }
    tListener = listener;
}

} // namespace ORB
