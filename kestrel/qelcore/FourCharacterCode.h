/// Four-character codes, in the two byte orders that the host has them in. [thread-safe]
#pragma once

#include <cstdint>

namespace qelcore {

/// The integer whose big-endian reading is the four characters: file types and property keys, "IMPT" is
/// 0x494D5054.
[[nodiscard]] constexpr std::uint32_t FourCharacterCode(const char (&characters)[5]) noexcept
{
    std::uint32_t code = 0;
    for (int index = 0; index < 4; ++index) {
        code = code << 8U | static_cast<std::uint8_t>(characters[index]);
    }
    return code;
}

/// The integer whose bytes in memory are the four characters: pixel formats, "bgra" is 0x61726762.
[[nodiscard]] constexpr std::uint32_t FourBytesCode(const char (&characters)[5]) noexcept
{
    return FourCharacterCode({characters[3], characters[2], characters[1], characters[0], '\0'});
}

} // namespace qelcore
