/// A painted frame as export sees it.
#pragma once

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/Frame.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tessel::exporting {

/// Pixels of one frame in a paintable format, seen upright.
struct FrameView {
    BR::PixelFormat format = BR::PixelFormat::Unknown;
    std::int32_t width = 0;
    std::int32_t height = 0;
    const std::byte* top = nullptr;    ///< first byte of the top row
    std::ptrdiff_t rowBytes = 0;       ///< to the next row below; may be negative
    std::shared_ptr<const void> owner; ///< keeps the pixels alive in pictures that share them
};

/// Bytes of a frame's row up to its last pixel's group.
/// @throws ExportError  for a format that has no pixels
[[nodiscard]] std::size_t BytesOfRow(BR::PixelFormat format, std::int32_t width);

/// Whether two frames have the same format, size and pixels. Fast for frames that differ near the top.
/// @throws ExportError  for a format that has no pixels
[[nodiscard]] bool IsSameFrame(const FrameView& left, const FrameView& right);

[[nodiscard]] FrameView ViewOf(const importhost::Frame& frame);

} // namespace tessel::exporting
