/// Writes layouts as texts, in one form each.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>

#include <string>

namespace qellumenfactory {

/// The tree as text of the dialect: four spaces a level, parameters in the order of `Key`, a blank line
/// never, comments before their widget. Parsing it gives the same tree, and formatting that the same text.
[[nodiscard]] KESTRELUI_API std::string FormatLayout(const LayoutNode& root, Dialect dialect);

} // namespace qellumenfactory
