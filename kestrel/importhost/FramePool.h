/// Frame buffers that are used again, because a freshly mapped one costs many times the painting.
#pragma once

#include "FrameMemory.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace importhost {

/// Memory of the frames of one clip. Hands out what came back last: it is the warmest in the caches.
/// Keeps what was in use at once at most, and only of the size asked for last. Threads: [thread-safe].
class FramePool {
public:
    struct Block {
        FrameMemory memory;
        bool isZero = false; ///< fresh from the operating system
    };

    /// @throws std::bad_alloc
    [[nodiscard]] Block Take(std::size_t byteCount);

    /// Takes a block back; frees it where the size asked for has changed meanwhile.
    void Return(FrameMemory memory) noexcept;

    /// Blocks that wait for use.
    [[nodiscard]] std::size_t FreeCount() const;

private:
    mutable std::mutex mMutex;
    std::vector<FrameMemory> mFree; ///< last in, first out; its capacity covers every block handed out
    std::size_t mByteCount = 0;
    std::size_t mInUse = 0;
};

} // namespace importhost
