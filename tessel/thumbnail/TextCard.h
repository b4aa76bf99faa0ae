/// A picture of a text, for what has no picture.
#pragma once

#include "Image.h"

#include <string>
#include <string_view>
#include <vector>

namespace tessel::thumbnail {

/// Breaks a text into lines of at most `columns` letters, 1 or more: at spaces where there are any, else inside
/// a word.
[[nodiscard]] std::vector<std::string> BreakLines(std::string_view text, int columns);

/// `heading` and below it `text`, as large as they fit into a square of `size` pixels; what does not fit is
/// left out from the end, marked by dots.
[[nodiscard]] Image TextCard(std::string_view heading, std::string_view text, int size);

} // namespace tessel::thumbnail
