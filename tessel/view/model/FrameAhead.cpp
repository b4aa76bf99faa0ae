#include "FrameAhead.h"

#include <algorithm>
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

void FrameAhead::Want(const std::vector<std::int64_t>& frames, const FrameWish& wish)
{
    {
        const std::lock_guard lock(mMutex);
        if (wish != mWish) {
            mWish = wish;
            ++mWishNumber;
            mMade.clear();
            mInWork.clear(); // what is in work is of the old wish, and is dropped when it is ready
        }
        mWanted = frames;
        std::erase_if(mMade, [&frames](const auto& made) {
            return std::find(frames.begin(), frames.end(), made.first) == frames.end();
        });
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

void FrameAhead::Run()
{
    std::unique_ptr<FrameMaker> maker;
    std::unique_lock lock(mMutex);
    for (;;) {
        const auto next = [this] {
            return std::find_if(mWanted.begin(), mWanted.end(), [this](std::int64_t frame) {
                return !mMade.contains(frame) && !mInWork.contains(frame);
            });
        };
        mChanged.wait(lock, [&] { return mStops || next() != mWanted.end(); });
        if (mStops) {
            return;
        }
        const std::int64_t frame = *next();
        const FrameWish wish = mWish;
        const std::uint64_t number = mWishNumber;
        mInWork.insert(frame);
        lock.unlock();
        Made made;
        try {
            if (!maker) {
                maker = std::make_unique<FrameMaker>(mClip);
            }
            made.frame = std::make_shared<const ShownFrame>(maker->Make(frame, wish));
        } catch (const std::exception& error) {
            made.failure = error.what();
        }
        lock.lock();
        if (number == mWishNumber) {
            mInWork.erase(frame);
            if (std::find(mWanted.begin(), mWanted.end(), frame) != mWanted.end()) {
                mMade.insert_or_assign(frame, std::move(made));
            }
        }
        made = {}; // a frame that nobody wants any more goes while nobody waits for it
        lock.unlock();
        mOnReady();
        lock.lock();
    }
}

} // namespace tessel::view
