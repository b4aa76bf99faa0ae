/// The width of the terminal.
#pragma once

#include <cstddef>
#include <optional>

namespace tessel::cli {

/// Columns of the terminal that standard output goes to; nothing where it goes elsewhere.
[[nodiscard]] std::optional<std::size_t> TerminalColumns() noexcept;

} // namespace tessel::cli
