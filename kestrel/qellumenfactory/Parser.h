/// Reads layout texts of both dialects into one kind of tree.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>

#include <string_view>

namespace qellumenfactory {

/// The greatest depth of widgets inside one another.
inline constexpr int kDeepestNesting = 64;

/// Parses a layout. Its dialect is told by its first word: Lumen's widgets are called `qel_...`.
///
/// The returned tree is valid: one dialog, at the root; children only in widgets that may have them; every
/// parameter known, of the right type and in range; no minimum above its maximum; identifiers unique; radio
/// buttons inside radio groups. The grammar is in docs/lumen.md.
/// @param name  The name of the text in errors, for instance the layout's identifier.
/// @throws LayoutError at the first fault. Threads: [any-thread].
[[nodiscard]] KESTRELUI_API Layout ParseLayout(std::string_view text, std::string_view name);

} // namespace qellumenfactory
