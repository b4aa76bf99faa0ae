/// Cuts a request where a repeating pattern changes.
#pragma once

#include "AudioRequest.h"

#include <kestrel/qelmediatypes/TickTime.h>

#include <algorithm>
#include <cstdint>

namespace ImporterTessel {

/// A pattern's time grid: cycles aligned to absolute time zero, each of so many equal units.
struct PatternGrid {
    qelmediatypes::FrameRate unit; ///< ticks per unit
    std::int32_t unitCount = 0;    ///< units per cycle

    [[nodiscard]] constexpr qelmediatypes::FrameRate Cycle() const noexcept
    {
        return {unit.ticksPerFrame * unitCount};
    }
};

/// A stretch of a request within which the pattern does not change.
struct Segment {
    std::int32_t unit = 0;         ///< of the cycle, in which the stretch begins
    qelmediatypes::TickTime start; ///< absolute time of its first sample
    std::uint32_t offset = 0;      ///< samples from the request's first one
    std::uint32_t length = 0;      ///< samples, at least 1 and no more than the request has left
};

/// Calls `write(segment)` for each stretch of the request, in order and without gaps.
///
/// @param endUnit  endUnit(unit) is the unit of the same cycle, 1 to `unitCount`, where the stretch that
///                 begins in `unit` ends.
/// Cost: a few divisions a segment. Where the rate has no samples every segment is one sample long.
template <class EndUnit, class Write>
void WalkSegments(const AudioRequest& request, const PatternGrid& grid, const EndUnit& endUnit,
                  const Write& write)
{
    using qelmediatypes::TickTime;
    for (std::uint32_t offset = 0; offset < request.sampleCount;) {
        const TickTime time = request.start.AddFrames(offset, request.rate);
        const TickTime cycleStart(time.ToFrame64(grid.Cycle()), grid.Cycle());
        const auto unit = static_cast<std::int32_t>(
            std::clamp<std::int64_t>((time - cycleStart).ToFrame64(grid.unit), 0, grid.unitCount - 1));
        const TickTime end = cycleStart.AddFrames(endUnit(unit), grid.unit);
        // At least 1: a border between two samples would give an empty segment and an endless loop.
        const auto length = static_cast<std::uint32_t>(
            std::clamp<std::int64_t>((end - time).ToFrame64(request.rate), 1, request.sampleCount - offset));
        write(Segment{unit, time, offset, length});
        offset += length;
    }
}

} // namespace ImporterTessel
