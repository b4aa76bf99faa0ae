/// The length of a clip in frames, from its description record.
#pragma once

#include <cstdint>

namespace importhost {

/// Whole frames from the record's duration, frames × sampleSize cut to 32 bits.
///
/// Clips longer than 2^31 units wrap. Multiplication by an odd number can be undone modulo 2^32, so the
/// count is found all the same; an even sample size of 2^k × odd leaves the count modulo 2^(32-k), of
/// which the smallest is taken.
[[nodiscard]] std::int64_t FramesFromDuration(std::int32_t duration, std::int32_t sampleSize) noexcept;

} // namespace importhost
