/// One frame of the host: pooled pixels and how they lie in memory.
#pragma once

#include "Frame.h"
#include "FramePool.h"
#include "FrameRefusal.h"

#include <kestrel/brindle/PixelFormat.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace importhost {

/// How a frame's pixels lie in memory.
struct FrameLayout {
    BR::PixelFormat format = BR::PixelFormat::Unknown;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::size_t pictureRowBytes = 0; ///< bytes of a row that belong to the picture
    std::int32_t rowBytes = 0;       ///< from one row in memory to the next, padding included
    bool bottomRowFirst = false;

    [[nodiscard]] std::size_t ByteCount() const noexcept
    {
        return static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
    }
};

/// Lays out a frame. Rows are padded to whole multiples of 64 bytes (a cache line, so that no two rows
/// share one), those of v210 to 128 as its files have them: ((width + 47) / 48) × 128.
///
/// @param pixelFormat  Host four-character code.
/// @return nothing with `refusal` set where the limits or the format forbid the frame.
[[nodiscard]] std::optional<FrameLayout> LayOutFrame(std::uint32_t pixelFormat, std::int32_t width,
                                                     std::int32_t height, FrameRefusal& refusal) noexcept;

/// Whether a frame can lie in the caller's memory.
[[nodiscard]] bool Fits(const FrameLayout& layout, const FrameDestination& destination) noexcept;

/// Pixels of one frame; memory of the pool goes back there at the end. The handle that a plug-in holds is
/// the address of one of these.
class FrameBuffer {
public:
    /// @throws std::bad_alloc. The pixels hold whatever the pool's block held; see `IsZero`.
    FrameBuffer(std::shared_ptr<FramePool> pool, const FrameLayout& layout);
    /// In the caller's memory, in which the frame `Fits`.
    FrameBuffer(const FrameLayout& layout, const FrameDestination& destination) noexcept;
    ~FrameBuffer();
    FrameBuffer(const FrameBuffer&) = delete;
    FrameBuffer& operator=(const FrameBuffer&) = delete;

    [[nodiscard]] const FrameLayout& Layout() const noexcept { return mLayout; }
    [[nodiscard]] std::byte* Pixels() const noexcept { return mPixels; }
    /// Whether all bytes are known to be zero already.
    [[nodiscard]] bool IsZero() const noexcept { return mBlock.isZero; }
    /// Fills the picture, and in the pool's memory all that is between its rows.
    void Fill(std::uint8_t byte) noexcept;

private:
    std::shared_ptr<FramePool> mPool; ///< null for the caller's memory
    FrameLayout mLayout;
    FramePool::Block mBlock;
    std::byte* mPixels;
};

} // namespace importhost
