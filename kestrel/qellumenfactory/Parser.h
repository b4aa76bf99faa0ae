/// Reads layout texts of both dialects into one kind of tree.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>

#include <string_view>

namespace qellumenfactory {

/// Levels of widgets inside one another.
inline constexpr int kDeepestNesting = 64;

/// Parses a layout. Its dialect is told by its first word: Lumen's widgets are called `qel_...`.
///
/// What comes back is sound: one dialog at the root and nowhere else, children only where widgets hold some,
/// each parameter known, of its type and within its range, least values not above greatest ones, identifiers
/// unique, radio buttons inside radio groups. The grammar is in docs/lumen.md.
/// @param name  What errors call the text, for instance the layout's identifier.
/// @throws LayoutError at the first fault. Threads: [any-thread].
[[nodiscard]] KESTRELUI_API Layout ParseLayout(std::string_view text, std::string_view name);

} // namespace qellumenfactory
