/// Help as people read it: pages of text.
#pragma once

#include "HelpText.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace tessel::cli {

/// Pages are no narrower than this, and no wider than the next however wide the terminal is. @{
inline constexpr std::size_t kNarrowestPage = 40;
inline constexpr std::size_t kWidestPage = 110;
/// @}

/// Columns of the terminal that standard output is, else of `COLUMNS`, else 80; within the limits above.
[[nodiscard]] std::size_t PageWidth();

/// `tessel --help`. No line is wider than `width`, but for words that are. @{
[[nodiscard]] std::string ProgramPage(const ProgramText& program, std::size_t width);

/// `tessel COMMAND --help`.
[[nodiscard]] std::string CommandPage(const ProgramText& program, const CommandText& command,
                                      std::size_t width);

/// `tessel help TOPIC`.
[[nodiscard]] std::string TopicPage(const TopicText& topic, std::size_t width);
/// @}

/// `text` in lines of at most `width` columns, each behind `indent` blanks, breaking at blanks and keeping
/// newlines. A line that begins with a blank is a table's row: what does not fit of its last cell, which begins
/// behind the first gap of two blanks, goes on below that cell.
[[nodiscard]] std::string Wrapped(std::string_view text, std::size_t indent, std::size_t width);

} // namespace tessel::cli
