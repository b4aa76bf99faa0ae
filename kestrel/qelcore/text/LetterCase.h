/// Lower case of ASCII letters, the same in every locale: for names and file endings, not for running text.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace qelcore::text {

/// The small letter of a capital one; any other character, and each byte of UTF-8 beyond ASCII, as it is.
/// Threads: [thread-safe].
[[nodiscard]] constexpr char LowerCase(char letter) noexcept
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// The text with each of its characters in lower case. Threads: [thread-safe].
[[nodiscard]] inline std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) { return LowerCase(letter); });
    return lower;
}

} // namespace qelcore::text
