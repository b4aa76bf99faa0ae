/// Makes controls from a layout.
#pragma once

#include "Layout.h"

#include <kestrel/Export.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <memory>

namespace qellumenfactory {

/// The dialog that a parsed layout describes, every control in the layout's state. The layout is sound, as
/// `ParseLayout` returns it.
[[nodiscard]] KESTRELUI_API std::unique_ptr<qelui::UI_Dialog> BuildDialog(const LayoutNode& root);

} // namespace qellumenfactory
