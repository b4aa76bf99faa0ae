#include "UI_ControlView.h"

#include <kestrel/qelui/controls/PersonalAct.h>
#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <utility>

namespace qelui {

std::string_view NameOf(ControlKind kind) noexcept
{
    switch (kind) {
    case ControlKind::Dialog:
        return "dialog";
    case ControlKind::Group:
        return "group";
    case ControlKind::RadioGroup:
        return "radio group";
    case ControlKind::OkCancelRow:
        return "ok cancel row";
    case ControlKind::Popup:
        return "popup";
    case ControlKind::NumberEdit:
        return "number edit";
    case ControlKind::HotTextNumber:
        return "hot text number";
    case ControlKind::Button:
        return "button";
    case ControlKind::StaticText:
        return "static text";
    case ControlKind::CheckBox:
        return "check box";
    case ControlKind::RadioButton:
        return "radio button";
    }
    return "control";
}

bool IsActedOn(ControlKind kind) noexcept
{
    switch (kind) {
    case ControlKind::Popup:
    case ControlKind::NumberEdit:
    case ControlKind::HotTextNumber:
    case ControlKind::Button:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
        return true;
    case ControlKind::Dialog:
    case ControlKind::Group:
    case ControlKind::RadioGroup:
    case ControlKind::OkCancelRow:
    case ControlKind::StaticText:
        break;
    }
    return false;
}

UI_ControlView::UI_ControlView(ControlKind kind, std::string identifier)
    : mKind(kind), mIdentifier(std::move(identifier))
{
}

UI_ControlView::~UI_ControlView() = default;

void UI_ControlView::SetLabel(std::string label)
{
    mLabel = std::move(label);
    ChangedLook();
}

void UI_ControlView::SetTooltip(std::string tooltip)
{
    mTooltip = std::move(tooltip);
    ChangedLook();
}

void UI_ControlView::SetMinSize(int width, int height)
{
    mMinWidth = width;
    mMinHeight = height;
    ChangedLook();
}

void UI_ControlView::SetDisabled(bool disabled)
{
    mDisabled = disabled;
    ChangedLook();
}

bool UI_ControlView::IsEnabled() const noexcept
{
    for (const UI_ControlView* view = this; view != nullptr; view = view->mParent) {
        if (view->mDisabled) {
            return false;
        }
    }
    return true;
}

std::string UI_ControlView::ShownText() const
{
    return mLabel;
}

void UI_ControlView::NotifyWhenChanged(ChangeHandler handler)
{
    mHandlers.push_back(std::move(handler));
}

UI_Dialog* UI_ControlView::Dialog() noexcept
{
    UI_ControlView* root = this;
    while (root->mParent != nullptr) {
        root = root->mParent;
    }
    return dynamic_cast<UI_Dialog*>(root);
}

void UI_ControlView::ChangedLook()
{
    if (UI_Dialog* const dialog = Dialog(); dialog != nullptr && dialog->mObserver != nullptr) {
        dialog->mObserver->OnControlChanged(*this);
    }
}

void UI_ControlView::NotifyChanged()
{
    UI_Dialog* const dialog = Dialog();
    if (dialog == nullptr) {
        RunHandlers();
        return;
    }
    if (dialog->IsClosed()) {
        return;
    }
    try {
        dialog->NoteAct();
        PersonalAct act(*dialog, *this);
        RunHandlers();
        act.Finish();
    } catch (...) {
        dialog->KeepException(std::current_exception());
    }
}

void UI_ControlView::RunHandlers()
{
    // A copy, because a handler may add handlers.
    const std::vector<ChangeHandler> handlers = mHandlers;
    for (const ChangeHandler& handler : handlers) {
        handler();
    }
}

} // namespace qelui
