/// Controls that hold others: groups, radio groups and the row of OK and Cancel. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/controls/UI_ControlView.h>

#include <memory>
#include <string_view>
#include <vector>

namespace qelui {

class UI_Button;

enum class Orientation { Column, Row };

/// Arranges its children below one another or side by side, in reading and tab order. `Label()` is the
/// header, a static text; groups fill the width they are given.
class KESTRELUI_API UI_Group : public UI_ControlView {
public:
    explicit UI_Group(std::string identifier, ControlKind kind = ControlKind::Group);
    ~UI_Group() override;
    UI_Group(const UI_Group&) = delete;
    UI_Group& operator=(const UI_Group&) = delete;

    /// Adds the control as the last child and owns it. @return the control.
    template <class Control>
    Control& Add(std::unique_ptr<Control> control)
    {
        Control& added = *control;
        AddChild(std::move(control));
        return added;
    }

    [[nodiscard]] const std::vector<std::unique_ptr<UI_ControlView>>& Children() const noexcept
    {
        return mChildren;
    }

    [[nodiscard]] Orientation GetOrientation() const noexcept { return mOrientation; }
    void SetOrientation(Orientation orientation) noexcept { mOrientation = orientation; }

    /// Whether the group is drawn as a frame with a header, or only arranges its children.
    [[nodiscard]] bool HasBorder() const noexcept { return mBorder; }
    void SetBorder(bool border) noexcept { mBorder = border; }

    /// Logical pixels between children and around them; -1 lets the toolkit choose. @{
    [[nodiscard]] int Spacing() const noexcept { return mSpacing; }
    [[nodiscard]] int Margin() const noexcept { return mMargin; }
    void SetSpacing(int pixels) noexcept { mSpacing = pixels; }
    void SetMargin(int pixels) noexcept { mMargin = pixels; }
    /// @}

    /// The control of that identifier in this group or below, null where there is none. An empty identifier
    /// finds nothing.
    [[nodiscard]] UI_ControlView* FindControl(std::string_view identifier) noexcept;

    /// The same, as a control of class `Control`, which must have a static `kTypeName`.
    /// @throws qelcore::null_pointer_exception naming that type and the identifier where there is no such
    ///         control, or one of another class.
    template <class Control>
    [[nodiscard]] Control& GetControl(std::string_view identifier)
    {
        auto* const control = dynamic_cast<Control*>(FindControl(identifier));
        if (control == nullptr) {
            ThrowMissing(Control::kTypeName, identifier);
        }
        return *control;
    }

    /// All controls below this group in reading order, groups before what they hold.
    [[nodiscard]] std::vector<UI_ControlView*> AllControls();

private:
    void AddChild(std::unique_ptr<UI_ControlView> child);
    [[noreturn]] static void ThrowMissing(std::string_view typeName, std::string_view identifier);

    std::vector<std::unique_ptr<UI_ControlView>> mChildren;
    Orientation mOrientation = Orientation::Column;
    bool mBorder = true;
    int mSpacing = -1;
    int mMargin = -1;
};

/// Radio buttons below it, however deep, up to the next radio group, exclude one another.
class KESTRELUI_API UI_RadioGroup final : public UI_Group {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_RadioGroup";
    explicit UI_RadioGroup(std::string identifier) : UI_Group(std::move(identifier), ControlKind::RadioGroup) {}
};

/// The last row of a dialog: its children are the buttons `okButton` and `cancelButton`. OK is the dialog's
/// default button; Escape and closing the window are Cancel.
class KESTRELUI_API UI_OkCancelRow final : public UI_Group {
public:
    static constexpr std::string_view kTypeName = "qelui::UI_OkCancelRow";
    static constexpr std::string_view kOkIdentifier = "okButton";
    static constexpr std::string_view kCancelIdentifier = "cancelButton";
    explicit UI_OkCancelRow(std::string identifier);
};

} // namespace qelui
