/// Many threads make things, one takes them in order.
#pragma once

#include "ExportError.h"

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tessel::exporting {

/// Makes results 0, 1, 2, ... `count` - 1 on several threads and hands them out in that order. At most
/// `capacity` results are being made or waiting, so memory stays bounded however slow the taker is. What a
/// maker throws, `Take` throws when that result's turn comes, and no results come after it: the threads stop at
/// the first failure, as memory that has run out holds only so many exceptions. Destruction stops the work and
/// waits for it.
template <class Result>
class OrderedPipeline {
public:
    using Make = std::function<Result(std::int64_t index)>;

    /// @param makers    one per thread, each called on its own thread only
    /// @param capacity  1 or more
    /// @throws ExportError  where the system does not start that many threads
    OrderedPipeline(std::int64_t count, std::vector<Make> makers, std::int64_t capacity)
        : mCount(count), mCapacity(capacity), mSlots(static_cast<std::size_t>(capacity))
    {
        mThreads.reserve(makers.size());
        try {
            for (Make& make : makers) {
                mThreads.emplace_back([this, make = std::move(make)] { Work(make); });
            }
        } catch (const std::system_error&) {
            const std::size_t started = mThreads.size();
            Stop();
            throw ExportError("the system starts only " + std::to_string(started) + " of " +
                              std::to_string(makers.size()) + " threads; use fewer, as in --threads 4");
        } catch (...) {
            Stop();
            throw;
        }
    }

    ~OrderedPipeline() { Stop(); }
    OrderedPipeline(const OrderedPipeline&) = delete;
    OrderedPipeline& operator=(const OrderedPipeline&) = delete;

    /// The next result; nothing behind the last or a failed one. Waits until it is there.
    [[nodiscard]] std::optional<Result> Take()
    {
        std::unique_lock lock(mMutex);
        if (mTaken == mCount) {
            return std::nullopt;
        }
        mChanged.wait(lock, [this] { return SlotOf(mTaken).done; });
        Slot slot = std::exchange(SlotOf(mTaken), Slot{});
        mTaken = slot.failure ? mCount : mTaken + 1;
        lock.unlock();
        mChanged.notify_all();
        if (slot.failure) {
            std::rethrow_exception(slot.failure);
        }
        return std::move(slot.result);
    }

private:
    struct Slot {
        std::optional<Result> result;
        std::exception_ptr failure;
        bool done = false;
    };

    void Work(const Make& make)
    {
        for (;;) {
            std::int64_t index = 0;
            {
                std::unique_lock lock(mMutex);
                mChanged.wait(lock, [this] { return mStopping || mStarted == mCount || HasRoom(); });
                if (mStopping || mStarted == mCount) {
                    return;
                }
                index = mStarted++;
            }
            Slot slot;
            slot.done = true;
            try {
                slot.result = make(index);
            } catch (...) {
                slot.failure = std::current_exception();
            }
            {
                const std::lock_guard lock(mMutex);
                mStopping = mStopping || slot.failure; // what comes before has been started
                SlotOf(index) = std::move(slot);
            }
            mChanged.notify_all();
        }
    }

    [[nodiscard]] bool HasRoom() const { return mStarted - mTaken < mCapacity; }

    Slot& SlotOf(std::int64_t index) { return mSlots[static_cast<std::size_t>(index % mCapacity)]; }

    void Stop()
    {
        {
            const std::lock_guard lock(mMutex);
            mStopping = true;
        }
        mChanged.notify_all();
        for (std::thread& thread : mThreads) {
            thread.join();
        }
        mThreads.clear();
    }

    std::int64_t mCount;
    std::int64_t mCapacity;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<Slot> mSlots; ///< of results mTaken to mTaken + mCapacity - 1; none is made while threads work,
                              ///< which must not fail outside of `make`
    std::int64_t mStarted = 0;
    std::int64_t mTaken = 0;
    bool mStopping = false;
    std::vector<std::thread> mThreads;
};

} // namespace tessel::exporting
