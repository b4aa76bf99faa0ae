#include "FrameAhead.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <utility>

namespace tessel::view {

FrameAhead::FrameAhead(std::shared_ptr<const ViewedClip> clip, int threads, std::function<void()> onReady)
    : mClip(std::move(clip)), mOnReady(std::move(onReady))
{
    for (int i = 0; i < std::max(threads, 1); ++i) {
        mThreads.emplace_back([this] { Run(); });
    }
}

FrameAhead::~FrameAhead()
{
    {
        const std::lock_guard lock(mMutex);
        mStops = true;
    }
    mChanged.notify_all();
    for (std::thread& thread : mThreads) {
        thread.join();
    }
}

void FrameAhead::Want(const std::vector<std::int64_t>& frames, const FrameWish& wish,
                      const std::vector<std::int64_t>& keep)
{
    {
        const std::lock_guard lock(mMutex);
        if (wish != mWish) {
            mWish = wish;
            ++mWishNumber;
            mMade.clear();
            mInWork.clear(); // what is in work is of the old wish, and is dropped when it is ready
            mScopesAt.reset();
        }
        mWanted = frames;
        const auto names = [](const std::vector<std::int64_t>& list, std::int64_t frame) {
            return std::find(list.begin(), list.end(), frame) != list.end();
        };
        std::erase_if(mMade,
                      [&](const auto& made) { return !names(frames, made.first) && !names(keep, made.first); });
        if (NextToMake() == mWanted.end()) {
            return; // nothing that a thread would have to wake up for
        }
    }
    mChanged.notify_all();
}

std::shared_ptr<const ShownFrame> FrameAhead::Ready(std::int64_t frame) const
{
    const std::lock_guard lock(mMutex);
    const auto made = mMade.find(frame);
    return made == mMade.end() ? nullptr : made->second.frame;
}

std::optional<std::string> FrameAhead::Failure(std::int64_t frame) const
{
    const std::lock_guard lock(mMutex);
    const auto made = mMade.find(frame);
    return made == mMade.end() || made->second.frame ? std::nullopt : std::optional(made->second.failure);
}

std::vector<std::int64_t> FrameAhead::AllReady() const
{
    const std::lock_guard lock(mMutex);
    std::vector<std::int64_t> frames;
    for (const auto& [frame, made] : mMade) {
        frames.push_back(frame);
    }
    return frames;
}

double FrameAhead::SecondsToMake() const
{
    const std::lock_guard lock(mMutex);
    return mSecondsToMake;
}

FrameWish FrameAhead::WishNow()
{
    FrameWish wish = mWish;
    if (wish.scopes) {
        const auto now = std::chrono::steady_clock::now();
        const std::chrono::duration<double> least(wish.secondsBetweenScopes);
        wish.scopes = !mScopesAt || now - *mScopesAt >= least;
        if (wish.scopes) {
            mScopesAt = now;
        }
    }
    return wish;
}

std::vector<std::int64_t>::const_iterator FrameAhead::NextToMake() const
{
    return std::find_if(mWanted.begin(), mWanted.end(), [this](std::int64_t frame) {
        return !mMade.contains(frame) && !mInWork.contains(frame);
    });
}

void FrameAhead::Run()
{
    std::unique_ptr<FrameMaker> maker;
    std::unique_lock lock(mMutex);
    for (;;) {
        mChanged.wait(lock, [this] { return mStops || NextToMake() != mWanted.end(); });
        if (mStops) {
            return;
        }
        const std::int64_t frame = *NextToMake();
        const FrameWish wish = WishNow();
        const std::uint64_t number = mWishNumber;
        mInWork.insert(frame);
        lock.unlock();
        Made made;
        const auto began = std::chrono::steady_clock::now();
        try {
            if (!maker) {
                maker = std::make_unique<FrameMaker>(mClip);
            }
            made.frame = std::make_shared<const ShownFrame>(maker->Make(frame, wish));
        } catch (const std::exception& error) {
            made.failure = error.what();
        }
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
        lock.lock();
        mSecondsToMake += (seconds - mSecondsToMake) * (mSecondsToMake > 0 ? 0.2 : 1.0);
        if (number == mWishNumber) {
            mInWork.erase(frame);
            mMade.insert_or_assign(frame, std::move(made));
        }
        lock.unlock();
        made = {};
        mOnReady();
        lock.lock();
    }
}

} // namespace tessel::view
