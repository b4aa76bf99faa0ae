/// Makes controls from a layout.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <memory>

namespace qellumenfactory {

/// The dialog that a layout describes, with every control in the state that the layout gives it. The layout
/// must be valid, as `ParseLayout` returns it. Threads: [ui-thread].
[[nodiscard]] KESTRELUI_API std::unique_ptr<qelui::UI_Dialog> BuildDialog(const LayoutNode& root);

} // namespace qellumenfactory
