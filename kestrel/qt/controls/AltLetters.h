/// The letters that lead to controls together with Alt.
#pragma once

#include <QString>
#include <map>
#include <string>

namespace qelui {
class UI_ControlView;
class UI_Dialog;
} // namespace qelui

namespace kestrelqt {

/// A letter of its own for as many controls of the dialog as the labels permit: O for OK, C for Cancel, else a
/// letter of the control's label, best the first one of a word. Labels that occur more than once get none, nor
/// do controls whose label changes while the dialog is open: their letters would change those of other
/// controls. The result depends on the remaining labels alone.
/// @param changesLabel  Tells which controls these are.
[[nodiscard]] std::map<const qelui::UI_ControlView*, QChar>
ChooseAltLetters(qelui::UI_Dialog& dialog, bool (*changesLabel)(const qelui::UI_ControlView& control));

/// A label as Qt takes it: the letter marked where it occurs, other ampersands escaped.
[[nodiscard]] QString WithAltLetter(const std::string& label, QChar letter);
/// The inverse.
[[nodiscard]] QString WithoutAltLetter(const QString& text);

} // namespace kestrelqt
