/// What the command line asks of values; each complaint is one line that says what would be right.
#pragma once

#include <CLI/CLI.hpp>

namespace tessel::cli {

/// Refuses "", which a shell makes of a variable that is not set. Options that were given are never taken for
/// ones that were not.
[[nodiscard]] CLI::Validator NotEmpty();

/// A whole decimal number of 1 or more. For `transform`: leading zeros go, which would make it octal.
[[nodiscard]] CLI::Validator WholeFromOne();

/// A whole decimal number of 0 or more, likewise.
[[nodiscard]] CLI::Validator WholeFromZero();

/// A finite number of seconds, `least` to `most`.
[[nodiscard]] CLI::Validator Seconds(double least, double most);

} // namespace tessel::cli
