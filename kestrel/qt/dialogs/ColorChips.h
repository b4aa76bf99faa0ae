/// Colours on the buttons that pick them.
#pragma once

#include "DialogLayout.h"

namespace kestrelqt {

/// A group that begins with a button followed by numbers labelled "Red:", "Green:" and "Blue:" is a column for
/// one colour: its button gets a chip of that colour, which follows the numbers. Other groups stay as they are.
void ShowColorChips(const qelui::UI_Group& group, DialogWidgets& widgets);

/// Whether the control is the button of such a column. Its caption tells which colour it picks at present.
[[nodiscard]] bool IsColorButton(const qelui::UI_ControlView& control);

/// The chip shows the numbers of the column's models.
void FollowColorChip(const qelui::UI_ControlView& control, const DialogWidgets& widgets);

} // namespace kestrelqt
