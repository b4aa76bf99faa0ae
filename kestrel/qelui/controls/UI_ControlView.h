/// The base of all controls: models that need no window system.
///
/// Two sides use a control, and each has its own verbs:
/// - **code** (a dialog's implementation) calls `Set...`: the value is taken as it is, never rounded,
///   never limited, and no change handler runs;
/// - a **person**, acting through a toolkit, arrives as `Enter...`, `Choose...`, `Press...`: what is entered
///   is made to fit the control and then the change handlers run.
///
/// Every change is reported to the window's observer, so that a toolkit can update its widget.
/// Threads: [ui-thread] for everything in this library unless a declaration says otherwise.
#pragma once

#include <kestrel/Export.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace qelui {

class UI_Dialog;
class UI_Group;

enum class ControlKind {
    Dialog,
    Group,
    RadioGroup,
    OkCancelRow,
    Popup,
    NumberEdit,
    HotTextNumber,
    Button,
    StaticText,
    CheckBox,
    RadioButton
};
inline constexpr int kControlKindCount = 11;

/// The kind's name in dumps and messages: "popup", "number edit".
[[nodiscard]] KESTRELUI_API std::string_view NameOf(ControlKind kind) noexcept;

/// A label as a name, in sentences and for assistive tools: without the colon or the dots at its end.
[[nodiscard]] KESTRELUI_API std::string NameFromLabel(std::string_view label);

/// Whether a person acts on controls of this kind, and the focus goes there; groups and static texts are only
/// seen.
[[nodiscard]] KESTRELUI_API bool IsActedOn(ControlKind kind) noexcept;

/// One control. Owned by its group; groups and the dialog are controls themselves, so a dialog is a tree.
class KESTRELUI_API UI_ControlView {
public:
    using ChangeHandler = std::function<void()>;

    virtual ~UI_ControlView();
    UI_ControlView(const UI_ControlView&) = delete;
    UI_ControlView& operator=(const UI_ControlView&) = delete;

    [[nodiscard]] ControlKind Kind() const noexcept { return mKind; }
    /// Unique in its dialog where not empty; groups that only arrange have none.
    [[nodiscard]] const std::string& Identifier() const noexcept { return mIdentifier; }

    /// Label or caption, UTF-8: a button's, check box's and radio button's own text, a group's header, else
    /// the text that stands before the control. @{
    [[nodiscard]] const std::string& Label() const noexcept { return mLabel; }
    void SetLabel(std::string label);
    /// @}

    /// One sentence that explains the control; may be empty. @{
    [[nodiscard]] const std::string& Tooltip() const noexcept { return mTooltip; }
    void SetTooltip(std::string tooltip);
    /// @}

    /// Minimum size of the control without its label, in logical pixels; 0 lets the toolkit choose. @{
    [[nodiscard]] int MinWidth() const noexcept { return mMinWidth; }
    [[nodiscard]] int MinHeight() const noexcept { return mMinHeight; }
    void SetMinSize(int width, int height);
    /// @}

    void SetDisabled(bool disabled);
    /// Whether a person can use the control: neither it nor a group around it is disabled.
    [[nodiscard]] bool IsEnabled() const noexcept;

    /// The text that a person reads in or on the control: a number at its decimals, a popup's chosen item,
    /// a static text's value, else the label.
    [[nodiscard]] virtual std::string ShownText() const;

    /// Adds a handler that runs after each change that a person makes. Handlers run in the order in which
    /// they were added. An exception of a handler closes the dialog, and `UI_Dialog::RunModal` throws it
    /// after the window is gone; it never passes through the toolkit.
    void NotifyWhenChanged(ChangeHandler handler);

    [[nodiscard]] UI_Group* Parent() const noexcept { return mParent; }
    /// The dialog that the control is in; null outside one.
    [[nodiscard]] UI_Dialog* Dialog() noexcept;

protected:
    UI_ControlView(ControlKind kind, std::string identifier);

    /// Reports to the window's observer that the control has changed.
    void ChangedLook();
    /// A person changed the control: runs the handlers, unless the control's dialog is closed already, and has
    /// the dialog's status line say what came of it.
    void NotifyChanged();

private:
    friend class UI_Group;
    void RunHandlers();

    ControlKind mKind;
    std::string mIdentifier;
    std::string mLabel;
    std::string mTooltip;
    int mMinWidth = 0;
    int mMinHeight = 0;
    bool mDisabled = false;
    UI_Group* mParent = nullptr;
    std::vector<ChangeHandler> mHandlers;
};

} // namespace qelui
