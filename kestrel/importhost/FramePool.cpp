#include "FramePool.h"

#include <utility>

namespace importhost {

FramePool::Block FramePool::Take(std::size_t byteCount)
{
    std::vector<FrameMemory> dropped; // freed outside the lock
    {
        const std::lock_guard lock(mMutex);
        if (byteCount != mByteCount) {
            dropped.swap(mFree);
            mByteCount = byteCount;
        }
        if (!mFree.empty()) {
            Block block{std::move(mFree.back()), /*isZero=*/false};
            mFree.pop_back();
            ++mInUse;
            return block;
        }
        // Room for its return now, so that returning never allocates.
        mFree.reserve(mInUse + 1);
        ++mInUse;
    }
    try {
        return {FrameMemory(byteCount), /*isZero=*/true};
    } catch (...) {
        const std::lock_guard lock(mMutex);
        --mInUse;
        throw;
    }
}

void FramePool::Return(FrameMemory memory) noexcept
{
    const std::lock_guard lock(mMutex);
    --mInUse;
    if (memory.Size() == mByteCount && mFree.size() < mFree.capacity()) {
        mFree.push_back(std::move(memory));
    }
}

std::size_t FramePool::FreeCount() const
{
    const std::lock_guard lock(mMutex);
    return mFree.size();
}

} // namespace importhost
