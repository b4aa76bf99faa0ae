/// Letters of five by seven dots, for the few words that a thumbnail has room for.
#pragma once

#include <array>
#include <cstdint>

namespace tessel::thumbnail {

inline constexpr int kLetterWidth = 5;   ///< dots
inline constexpr int kLetterHeight = 7;  ///< dots
inline constexpr int kLetterAdvance = 6; ///< dots from one letter to the next
inline constexpr int kLineAdvance = 9;   ///< dots from one line to the next

/// The dots of a letter from the top row down; bit 4 is the left one. A character outside ASCII is a full box.
[[nodiscard]] std::array<std::uint8_t, kLetterHeight> LetterRows(char letter) noexcept;

} // namespace tessel::thumbnail
