/// What the library's functions answer.
#pragma once

#include <cstdint>

namespace pixmill {

inline constexpr std::int32_t kDone = 0;
inline constexpr std::int32_t kBadArgument = -1;
inline constexpr std::int32_t kOutOfMemory = -2;

} // namespace pixmill
