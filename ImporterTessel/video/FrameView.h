/// The pixels of the frame being painted.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ImporterTessel {

/// A host frame's memory and how to walk it. Borrowed from the host for one request.
struct FrameView {
    std::byte* pixels = nullptr;
    std::int32_t rowBytes = 0;   ///< from one row to the next; padded or negative as the host likes
    std::uint32_t paintCode = 0; ///< image-library format
    std::uint32_t width = 0;     ///< pixels
    std::uint32_t height = 0;    ///< pixels

    /// First byte of a row, counted from the pixel address in memory.
    [[nodiscard]] std::byte* Row(std::uint32_t row) const noexcept
    {
        return pixels + std::int64_t{row} * rowBytes;
    }
};

} // namespace ImporterTessel
