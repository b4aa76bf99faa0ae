#include "UI_Button.h"

#include <kestrel/qelui/controls/UI_Group.h>

namespace qelui {

namespace {

/// Switches off all radio buttons below `group` except `chosen`. Radio groups inside `group` are not touched.
void SwitchOffOthers(UI_Group& group, const UI_RadioButton& chosen)
{
    for (const auto& child : group.Children()) {
        if (auto* const radio = dynamic_cast<UI_RadioButton*>(child.get())) {
            if (radio != &chosen) {
                radio->SetValue(0);
            }
        } else if (auto* const inner = dynamic_cast<UI_Group*>(child.get());
                   inner != nullptr && inner->Kind() != ControlKind::RadioGroup) {
            SwitchOffOthers(*inner, chosen);
        }
    }
}

} // namespace

void UI_Button::Press()
{
    if (IsEnabled()) {
        NotifyChanged();
    }
}

void UI_CheckBox::SetChecked(bool checked)
{
    mChecked = checked;
    ChangedLook();
}

void UI_CheckBox::EnterChecked(bool checked)
{
    if (IsEnabled() && checked != mChecked) {
        SetChecked(checked);
        NotifyChanged();
    }
}

void UI_RadioButton::SetValue(int value)
{
    mChosen = value != 0;
    ChangedLook();
}

void UI_RadioButton::Press()
{
    if (!IsEnabled() || mChosen) {
        return;
    }
    UI_Group* group = Parent();
    while (group != nullptr && group->Kind() != ControlKind::RadioGroup) {
        group = group->Parent();
    }
    if (group != nullptr) {
        SwitchOffOthers(*group, *this);
    }
    SetValue(1);
    NotifyChanged();
}

} // namespace qelui
