/// Help as programs read it, for man pages and completions.
#pragma once

#include "HelpText.h"

#include <string>

namespace tessel::cli {

/// One JSON object: `name`, `summary`, `version`, `groups` (options of every command), `examples`, `topics`
/// ({name, summary, text}) and `commands` ({name, summary, description, usage, groups, positionals, examples}).
/// A group is {name, options}; an option or positional {names, value, text, choices, default, file, required,
/// several}, where `file` is "", "any" or "clip"; an example {command, text}.
[[nodiscard]] std::string HelpAsJson(const ProgramText& program);

} // namespace tessel::cli
