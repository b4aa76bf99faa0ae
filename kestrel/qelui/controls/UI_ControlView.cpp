#include "UI_ControlView.h"

#include <kestrel/qelui/controls/PersonalAct.h>
#include <kestrel/qelui/controls/UI_Group.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace qelui {

namespace {

struct KindRow {
    ControlKind kind;
    std::string_view name;
    bool isActedOn;
};

constexpr std::array<KindRow, kControlKindCount> kKinds{{
    {ControlKind::Dialog, "dialog", false},
    {ControlKind::Group, "group", false},
    {ControlKind::RadioGroup, "radio group", false},
    {ControlKind::OkCancelRow, "ok cancel row", false},
    {ControlKind::Popup, "popup", true},
    {ControlKind::NumberEdit, "number edit", true},
    {ControlKind::HotTextNumber, "hot text number", true},
    {ControlKind::Button, "button", true},
    {ControlKind::StaticText, "static text", false},
    {ControlKind::CheckBox, "check box", true},
    {ControlKind::RadioButton, "radio button", true},
}};

static_assert(std::is_sorted(kKinds.begin(), kKinds.end(),
                             [](const KindRow& a, const KindRow& b) { return a.kind < b.kind; }));

const KindRow& RowOf(ControlKind kind) noexcept
{
    return kKinds[static_cast<std::size_t>(kind)];
}

} // namespace

std::string_view NameOf(ControlKind kind) noexcept
{
    return RowOf(kind).name;
}

bool IsActedOn(ControlKind kind) noexcept
{
    return RowOf(kind).isActedOn;
}

std::string NameFromLabel(std::string_view label)
{
    return std::string(label.substr(0, label.find_last_not_of(":. ") + 1)); // npos + 1 is 0
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
