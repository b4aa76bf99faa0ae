/// Four-character codes in messages. Threads: [thread-safe].
#pragma once

#include <cstdint>
#include <string>

namespace qelcore::text {

/// The characters of a `FourCharacterCode`; those that cannot be shown as "?".
[[nodiscard]] inline std::string TextOfFourCharacters(std::uint32_t code)
{
    std::string text;
    for (int index = 0; index < 4; ++index, code <<= 8U) {
        const auto character = static_cast<char>(code >> 24U);
        text += character >= ' ' && character <= '~' ? character : '?';
    }
    return text;
}

/// The same of a `FourBytesCode`.
[[nodiscard]] inline std::string TextOfFourBytes(std::uint32_t code)
{
    const std::string text = TextOfFourCharacters(code);
    return {text.rbegin(), text.rend()};
}

} // namespace qelcore::text
