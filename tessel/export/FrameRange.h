/// Frames of a clip.
#pragma once

#include <cstdint>

namespace tessel::exporting {

/// Frames of a clip, counted from 0.
struct FrameRange {
    std::int64_t first = 0;
    std::int64_t count = 0;

    [[nodiscard]] constexpr std::int64_t Last() const noexcept { return first + count - 1; }
    friend constexpr bool operator==(const FrameRange&, const FrameRange&) = default;
};

} // namespace tessel::exporting
