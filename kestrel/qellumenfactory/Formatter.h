/// Writes layouts as texts, in one fixed form for each dialect.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>

#include <string>

namespace qellumenfactory {

/// The tree as text of the dialect: four spaces a level, parameters in the order of `Key`, no blank lines,
/// comments before their widget. Parsing the text gives the same tree, and formatting that tree gives the
/// same text. Threads: [thread-safe].
[[nodiscard]] KESTRELUI_API std::string FormatLayout(const LayoutNode& root, Dialect dialect);

} // namespace qellumenfactory
