/// Memory for pictures that come one after the other.
#pragma once

#include "AlignedBuffer.h"

#include <cstddef>
#include <memory>

namespace tessel::exporting {

/// Buffers that are used again once their owners have let them go, so that the system need not clear new pages
/// for each picture. Holds as many as were in use at once. Threads: `Take` one at a time; owners let go on any
/// thread, also after the pool is gone.
class BufferPool {
public:
    BufferPool();

    /// A buffer of `size` bytes; those that the pool holds in another size are freed. Its contents are
    /// undefined.
    [[nodiscard]] std::shared_ptr<AlignedBuffer> Take(std::size_t size);

private:
    class Shelf;

    std::shared_ptr<Shelf> mShelf; ///< shared with every buffer in use, which returns to it
};

} // namespace tessel::exporting
