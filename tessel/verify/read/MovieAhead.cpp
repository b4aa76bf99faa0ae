#include "MovieAhead.h"

#include <cstddef>
#include <utility>

namespace tessel::verify::read {
namespace {

constexpr std::size_t kMostReady = 6; // pictures of 8K in floats have 400 MB

} // namespace

MovieAhead::MovieAhead(Movie& movie) : mMovie(movie), mThread([this] { Run(); }) {}

MovieAhead::~MovieAhead()
{
    {
        const std::lock_guard lock(mMutex);
        mStops = true;
    }
    mChanged.notify_all();
    mThread.join();
}

void MovieAhead::Run()
{
    for (bool isAtEnd = false; !isAtEnd;) {
        Item item;
        std::exception_ptr failure;
        try {
            item = mMovie.Next();
        } catch (...) {
            failure = std::current_exception();
        }
        isAtEnd = failure || std::holds_alternative<std::monostate>(item);
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [this] { return mStops || mReady.size() < kMostReady; });
        if (mStops) {
            return;
        }
        mFailure = failure;
        mReady.push_back(std::move(item));
        mChanged.notify_all();
    }
}

MovieAhead::Item MovieAhead::Next()
{
    std::unique_lock lock(mMutex);
    mChanged.wait(lock, [this] { return !mReady.empty(); });
    if (std::holds_alternative<std::monostate>(mReady.front())) {
        if (mFailure) {
            std::rethrow_exception(mFailure);
        }
        return {}; // stays there for the next call
    }
    Item item = std::move(mReady.front());
    mReady.pop_front();
    mChanged.notify_all();
    return item;
}

} // namespace tessel::verify::read
