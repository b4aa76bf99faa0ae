/// The hands and eyes of a script on one toolkit.
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

/// What a person sees of one control. A driver reads it from the widget, so that a script also tests that
/// widgets follow their models.
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

/// Acts as a person would. The runner calls an act only where `See` says that the control is enabled.
/// An act returns when all that it causes has happened, nested dialogs included; it never throws but
/// `std::bad_alloc`. The dialog may be closed afterwards, and its widgets gone.
class KESTRELUI_API ControlDriver {
public:
    ControlDriver() = default;
    virtual ~ControlDriver();
    ControlDriver(const ControlDriver&) = delete;
    ControlDriver& operator=(const ControlDriver&) = delete;

    [[nodiscard]] virtual SeenState See(UI_ControlView& control) = 0;

    virtual void Press(UI_Button& button) = 0;
    virtual void Press(UI_RadioButton& button) = 0;
    /// The box does not have that state yet.
    virtual void Check(UI_CheckBox& box, bool checked) = 0;
    /// The item is there and enabled; it may be the chosen one.
    virtual void Choose(UI_Popup& popup, int index) = 0;
    /// Types `text`, which is a number, in place of what stands there and confirms it.
    virtual void Type(UI_NumberView& number, std::string_view text) = 0;

    /// Saves a picture of the whole window. @return false where there is none to save or it cannot be
    /// written, with one line in `whyNot`.
    [[nodiscard]] virtual bool SaveScreenshot(const std::filesystem::path& file, std::string& whyNot) = 0;
};

/// What the model shows, which is what a toolkit without widgets sees.
[[nodiscard]] KESTRELUI_API SeenState SeeModel(UI_ControlView& control);

} // namespace qelui::script
