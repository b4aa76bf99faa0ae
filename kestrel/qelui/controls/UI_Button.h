/// Controls that are pressed: buttons, check boxes, radio buttons. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

namespace qelui {

/// `Label()` is the caption.
class KESTRELUI_API UI_Button final : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_Button";
    explicit UI_Button(std::string identifier) : UI_ControlView(ControlKind::Button, std::move(identifier)) {}

    /// A person presses the button: the handlers run. A disabled button does nothing.
    void Press();
};

class KESTRELUI_API UI_CheckBox final : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_CheckBox";
    explicit UI_CheckBox(std::string identifier) : UI_ControlView(ControlKind::CheckBox, std::move(identifier))
    {
    }

    [[nodiscard]] bool IsChecked() const noexcept { return mChecked; }
    void SetChecked(bool checked);

    /// A person checks or unchecks the box. Does nothing if the box is disabled or has that state already.
    void EnterChecked(bool checked);

private:
    bool mChecked = false;
};

/// One of the choices of the radio group around it.
class KESTRELUI_API UI_RadioButton final : public UI_ControlView {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_RadioButton";
    explicit UI_RadioButton(std::string identifier)
        : UI_ControlView(ControlKind::RadioButton, std::move(identifier))
    {
    }

    /// 1 when chosen, else 0.
    [[nodiscard]] int GetValue() const noexcept { return mChosen ? 1 : 0; }
    /// Changes this button only. Code may choose no button or several of a group, so a toolkit must not
    /// enforce exclusion when it shows the model.
    void SetValue(int value);

    /// A person chooses the button: the group's other buttons are switched off, then this button's handlers
    /// run. Does nothing if the button is disabled or already chosen.
    void Press();

private:
    bool mChosen = false;
};

} // namespace qelui
