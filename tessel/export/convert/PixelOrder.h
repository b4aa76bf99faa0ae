/// Pixels of 8-bit components in another order of bytes.
#pragma once

#include "Picture.h"
#include "SourceFrame.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tessel::exporting {

/// What each byte of a pixel is made from. Pixels have 4 bytes before, and 3 or 4 after.
struct PixelOrder {
    static constexpr std::uint8_t kOpaque = 4;

    /// By byte of the new pixel: the byte of the old one, or `kOpaque` for 0xFF.
    std::array<std::uint8_t, 4> from{kOpaque, kOpaque, kOpaque, kOpaque};
    int bytes = 4; ///< of a new pixel
};

/// The order that turns a source's pixels into those of a layout; nothing where that takes more than another
/// order.
[[nodiscard]] std::optional<PixelOrder> PixelOrderFor(const SourceInfo& source,
                                                      const LayoutInfo& target) noexcept;

/// Writes `width` pixels. The rows must not overlap.
void ReorderRow(const std::byte* source, std::int32_t width, const PixelOrder& order,
                std::byte* target) noexcept;

} // namespace tessel::exporting
