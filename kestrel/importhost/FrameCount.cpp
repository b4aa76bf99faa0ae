#include "FrameCount.h"

#include <algorithm>
#include <limits>

namespace importhost {

std::int64_t FramesFromDuration(std::int32_t duration, std::int32_t sampleSize) noexcept
{
    if (sampleSize <= 0) {
        return 0;
    }
    auto odd = static_cast<std::uint32_t>(sampleSize);
    unsigned twos = 0;
    while (odd % 2 == 0) {
        odd /= 2;
        ++twos;
    }
    // Newton's iteration doubles the right low bits of the inverse: 3, 6, 12, 24, 48.
    std::uint32_t inverse = odd;
    for (int i = 0; i < 4; ++i) {
        inverse *= 2U - odd * inverse;
    }
    std::uint32_t frames = (static_cast<std::uint32_t>(duration) >> twos) * inverse;
    if (twos > 0) {
        frames &= std::numeric_limits<std::uint32_t>::max() >> twos;
        // The top bit of what is known is the sign: a negative duration must not turn into a long one.
        const std::uint32_t sign = 1U << (31U - twos);
        return (frames & sign) != 0 ? 0 : frames;
    }
    return std::max<std::int64_t>(static_cast<std::int32_t>(frames), 0);
}

} // namespace importhost
