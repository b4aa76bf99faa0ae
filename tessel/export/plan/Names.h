/// Names in tables: looked up, listed.
#pragma once

#include <kestrel/qelcore/text/LetterCase.h>

#include <string>
#include <string_view>

namespace tessel::exporting {

/// Whether two names are the same but for the case of ASCII letters.
[[nodiscard]] constexpr bool IsSameName(std::string_view left, std::string_view right) noexcept
{
    using qelcore::text::LowerCase;
    if (left.size() != right.size()) {
        return false;
    }
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (LowerCase(left[i]) != LowerCase(right[i])) {
            return false;
        }
    }
    return true;
}

/// Whether `word` is one of the words of `list`, which stand between blanks.
[[nodiscard]] constexpr bool HasWord(std::string_view list, std::string_view word) noexcept
{
    while (!list.empty()) {
        const std::size_t end = list.find(' ');
        if (list.substr(0, end) == word) {
            return true;
        }
        list = end == std::string_view::npos ? std::string_view{} : list.substr(end + 1);
    }
    return false;
}

/// The row of a table with a name; null where there is none.
template <class Row, class Rows>
[[nodiscard]] constexpr const Row* RowNamed(const Rows& rows, std::string_view name) noexcept
{
    for (const Row& row : rows) {
        if (IsSameName(row.name, name)) {
            return &row;
        }
    }
    return nullptr;
}

/// The names of the rows that `which` accepts, with commas.
template <class Rows, class Which>
[[nodiscard]] std::string JoinNames(const Rows& rows, const Which& which)
{
    std::string names;
    for (const auto& row : rows) {
        if (which(row)) {
            names += names.empty() ? "" : ", ";
            names += row.name;
        }
    }
    return names;
}

} // namespace tessel::exporting
