/// A dialog's state as a JSON document, for scripts and tests.
#pragma once

#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/script/ControlDriver.h>

#include <string>

namespace qelui::script {

/// An array with one object for each control in reading order: "id", "kind", "label", "text" and "enabled",
/// and where the control has them "value" (a number, an index, a boolean), "items" (texts with their enabled
/// state), "minimum", "maximum", "decimals". Texts, items and enabled states are read through `driver`, the
/// rest from the model.
[[nodiscard]] std::string DumpDialog(UI_Dialog& dialog, ControlDriver& driver);

} // namespace qelui::script
