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
    if (tListener == nullptr) {
        return;
    }
    try {
        tListener->mHandler(report);
    } catch (...) {
        qelcore::logging::LogCurrentException("ORB::ReportSave");
    }
}

} // namespace ORB
