#include "BufferPool.h"

#include <mutex>
#include <utility>
#include <vector>

namespace tessel::exporting {

class BufferPool::Shelf {
public:
    /// A buffer of that size, from the shelf where it holds one.
    std::unique_ptr<AlignedBuffer> Take(std::size_t size)
    {
        const std::lock_guard lock(mMutex);
        while (!mFree.empty()) {
            std::unique_ptr<AlignedBuffer> buffer = std::move(mFree.back());
            mFree.pop_back();
            if (buffer->Size() == size) {
                return buffer;
            }
            --mMade;
        }
        // Room for every buffer there is: returning one must not fail.
        mFree.reserve(mMade + 1);
        auto buffer = std::make_unique<AlignedBuffer>(size);
        ++mMade;
        return buffer;
    }

    void Return(std::unique_ptr<AlignedBuffer> buffer) noexcept
    {
        const std::lock_guard lock(mMutex);
        mFree.push_back(std::move(buffer));
    }

private:
    std::mutex mMutex;
    std::vector<std::unique_ptr<AlignedBuffer>> mFree;
    std::size_t mMade = 0; ///< and not freed since
};

BufferPool::BufferPool() : mShelf(std::make_shared<Shelf>()) {}

std::shared_ptr<AlignedBuffer> BufferPool::Take(std::size_t size)
{
    std::unique_ptr<AlignedBuffer> buffer = mShelf->Take(size);
    const auto giveBack = [shelf = mShelf](AlignedBuffer* done) {
        shelf->Return(std::unique_ptr<AlignedBuffer>(done));
    };
    // Where the count cannot be allocated the buffer goes back, too.
    return {buffer.release(), giveBack};
}

} // namespace tessel::exporting
