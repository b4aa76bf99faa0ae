/// Which format a clip's frames are painted in.
#pragma once

#include <cstdint>

namespace ImporterTessel {

/// The one format of a frame, in both of its numberings.
struct FrameFormat {
    std::uint32_t paintCode = 0; ///< image library
    std::uint32_t hostCode = 0;  ///< host, four characters
};

/// An image-library code as rows of pixels can be painted in it: paintable ones stay, BT.601 DV becomes 8-bit
/// BGRA, every other compressed or planar format 8-bit VUYA with the BT.709 matrix. Whoever wants the
/// clip's own format converts the painted frame. [thread-safe]
[[nodiscard]] std::uint32_t NormalizedPaintCode(std::uint32_t paintCode) noexcept;

/// The format for a clip's host format; 0 and 0 for a number that is no format. [thread-safe]
[[nodiscard]] FrameFormat FrameFormatOf(std::uint32_t clipHostCode) noexcept;

} // namespace ImporterTessel
