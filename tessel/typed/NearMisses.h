/// Suggestions for mistyped words: the known words that are nearest.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::typed {

/// The candidate that is most like `word`: the first that it begins, else one with at most one wrong, missing,
/// extra or swapped letter in three. Case does not count. Empty where none is like it.
[[nodiscard]] std::string NearestTo(std::string_view word, std::span<const std::string> candidates);

/// "; did you mean 'render'?", to end a message with; empty where nothing is like the word.
[[nodiscard]] std::string DidYouMean(std::string_view word, std::span<const std::string> candidates);

/// The names of a table's rows.
template <class Rows>
[[nodiscard]] std::vector<std::string> NamesOfRows(const Rows& rows)
{
    std::vector<std::string> names;
    names.reserve(rows.size());
    for (const auto& row : rows) {
        names.emplace_back(row.name);
    }
    return names;
}

} // namespace tessel::typed
