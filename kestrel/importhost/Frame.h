/// A rendered frame.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/brindle/PixelFormat.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace importhost {

class FrameBuffer;

/// The caller's memory for the pixels of a frame that it knows beforehand.
struct FrameDestination {
    BR::PixelFormat format = BR::PixelFormat::Unknown;
    std::int32_t width = 0;   ///< pixels
    std::int32_t height = 0;  ///< pixels
    std::byte* top = nullptr; ///< first byte of the picture's top row; any alignment
    /// From one row to the next one below. Bytes after a row's last pixel stay as they are.
    std::ptrdiff_t rowBytes = 0;
};

/// Pixels of one frame, read-only, upright: row 0 is the picture's top row whatever the order in memory.
/// Owns its buffer, which goes back to the pool with the last copy. Threads: [any-thread].
class KESTRELHOST_API Frame {
public:
    Frame() = default;
    explicit Frame(std::shared_ptr<const FrameBuffer> buffer);

    [[nodiscard]] explicit operator bool() const noexcept { return mBuffer != nullptr; }
    [[nodiscard]] BR::PixelFormat Format() const noexcept;
    [[nodiscard]] std::int32_t Width() const noexcept;
    [[nodiscard]] std::int32_t Height() const noexcept;
    /// First byte of the picture's row `row`, counted from the top.
    [[nodiscard]] const std::byte* Row(std::int32_t row) const noexcept;
    /// Bytes from one row of the picture to the next one below; negative where memory runs upwards.
    [[nodiscard]] std::ptrdiff_t RowBytes() const noexcept;

private:
    std::shared_ptr<const FrameBuffer> mBuffer;
};

} // namespace importhost
