/// Why the host refuses to make a frame. Threads: [any-thread].
#pragma once

#include <cstdint>

namespace importhost {

enum class FrameRefusal : std::uint8_t { None, FormatCannotBePainted, SizeOutOfRange, TooLarge, OutOfMemory };

inline constexpr std::int32_t kLargestFrameSide = 100'000;       ///< pixels
inline constexpr std::uint64_t kLargestFrameBytes = 1ULL << 31U; ///< 2 GiB

} // namespace importhost
