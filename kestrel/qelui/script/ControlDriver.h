/// How a script uses the controls of one toolkit.
#pragma once

#include <kestrel/Export.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qelui {
class UI_ControlView;
class UI_Button;
class UI_CheckBox;
class UI_RadioButton;
class UI_Popup;
class UI_NumberView;
} // namespace qelui

namespace qelui::script {

/// A popup's item as a person sees it.
struct SeenItem {
    std::string text;
    bool enabled = true;
};

/// What a person sees of one control. A driver reads it from the widget, so that scripts also test whether
/// widgets show their models.
struct SeenState {
    /// Number: the shown number as text. Popup: the chosen index, -1 for none. Check box and radio button:
    /// "true" or "false". Empty for the others.
    std::string value;
    /// Caption, chosen item's text, shown number without its unit, or static text (the whole text where
    /// only part of it fits).
    std::string text;
    bool enabled = true;
    std::vector<SeenItem> items; ///< popups only
};

/// Does what a person would do. The runner calls an act only if `See` reports the control as enabled. An act
/// returns after everything that it causes has happened, including nested dialogs. It throws only
/// `std::bad_alloc`. Afterwards the dialog may be closed and its widgets destroyed. Threads: [ui-thread].
class KESTRELUI_API ControlDriver {
public:
    ControlDriver() = default;
    virtual ~ControlDriver();
    ControlDriver(const ControlDriver&) = delete;
    ControlDriver& operator=(const ControlDriver&) = delete;

    [[nodiscard]] virtual SeenState See(UI_ControlView& control) = 0;
    /// What the status line shows: its report where there is one, else its explanation.
    [[nodiscard]] virtual std::string SeeStatus() = 0;

    virtual void Press(UI_Button& button) = 0;
    virtual void Press(UI_RadioButton& button) = 0;
    /// The box has the other state before.
    virtual void Check(UI_CheckBox& box, bool checked) = 0;
    /// The item exists and is enabled; it may be the chosen one already.
    virtual void Choose(UI_Popup& popup, int index) = 0;
    /// Replaces the control's text by `text`, which need not be a number, and confirms it.
    virtual void Type(UI_NumberView& number, std::string_view text) = 0;

    /// Saves a picture of the whole window. @return false where there is none to save or it cannot be
    /// written, with one line in `whyNot`.
    [[nodiscard]] virtual bool SaveScreenshot(const std::filesystem::path& file, std::string& whyNot) = 0;
};

/// The state that the model shows, for a toolkit without widgets.
[[nodiscard]] KESTRELUI_API SeenState SeeModel(UI_ControlView& control);

} // namespace qelui::script
