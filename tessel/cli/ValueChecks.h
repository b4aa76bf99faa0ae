/// What the command line asks of values; each complaint is one line that says what would be right.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tessel::cli {

/// @param text  the value as typed; a check may write it in a form that the parser reads
/// @return the complaint; empty for a value that is right
using ValueCheck = std::function<std::string(std::string& text)>;

/// Refuses "".
[[nodiscard]] ValueCheck NotEmpty();

/// A whole decimal number from `least` to `most`. Removes leading zeros, which would make it octal.
[[nodiscard]] ValueCheck Whole(std::int64_t least, std::int64_t most);

/// One of `words`, exactly. The complaint names them all, and the nearest to what was typed.
[[nodiscard]] ValueCheck OneOf(std::vector<std::string> words);

/// A finite number of seconds, `least` to `most`.
[[nodiscard]] ValueCheck Seconds(double least, double most);

} // namespace tessel::cli
