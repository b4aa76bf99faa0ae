/// Memory for the pixels of one frame, straight from the operating system.
#pragma once

#include <kestrel/Export.h>

#include <cstddef>

namespace importhost {

/// Page-aligned bytes, zero when made. Above 32 MB it asks for huge pages, because a frame of that size
/// costs more in page faults than in painting. Move-only. Threads: [any-thread].
class KESTRELHOST_API FrameMemory {
public:
    FrameMemory() noexcept = default;
    /// @throws std::bad_alloc
    explicit FrameMemory(std::size_t byteCount);
    ~FrameMemory();
    FrameMemory(FrameMemory&& other) noexcept;
    FrameMemory& operator=(FrameMemory&& other) noexcept;
    FrameMemory(const FrameMemory&) = delete;
    FrameMemory& operator=(const FrameMemory&) = delete;

    [[nodiscard]] std::byte* Data() const noexcept { return mData; }
    [[nodiscard]] std::size_t Size() const noexcept { return mSize; }

private:
    std::byte* mData = nullptr;
    std::size_t mSize = 0;
    std::byte* mMapping = nullptr; ///< what the platform gave, of which mData is an aligned part
    std::size_t mMappingSize = 0;
};

} // namespace importhost
