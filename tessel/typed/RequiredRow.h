/// Rows of tables by the words that people type.
#pragma once

#include "NearMisses.h"

#include <tessel/export/plan/Names.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::typed {

/// @throws SettingError  always: "must be `expected`, not "`word`"", with the nearest of `words`
[[noreturn]] void RefuseWord(std::string_view word, std::string_view expected,
                             const std::vector<std::string>& words);

/// @throws SettingError  always: the word must be one of `names`
[[noreturn]] void RefuseName(std::string_view word, const std::vector<std::string>& names);

/// The row of a table that has the name. @throws SettingError  where none has
template <class Row>
[[nodiscard]] const Row& RequiredRow(std::span<const Row> rows, std::string_view name)
{
    for (const Row& row : rows) {
        if (exporting::IsSameName(row.name, name)) {
            return row;
        }
    }
    RefuseName(name, NamesOfRows(rows));
}

} // namespace tessel::typed
