#include "ControlDriver.h"

#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>

namespace qelui::script {

ControlDriver::~ControlDriver() = default;

SeenState SeeModel(UI_ControlView& control)
{
    SeenState state;
    state.text = control.ShownText();
    state.enabled = control.IsEnabled();
    if (dynamic_cast<const UI_NumberView*>(&control) != nullptr) {
        state.value = state.text;
    } else if (const auto* const popup = dynamic_cast<const UI_Popup*>(&control)) {
        state.value = std::to_string(popup->GetValue());
        for (const UI_Popup::Item& item : popup->Items()) {
            state.items.push_back({item.text, item.enabled});
        }
    } else if (const auto* const box = dynamic_cast<const UI_CheckBox*>(&control)) {
        state.value = box->IsChecked() ? "true" : "false";
    } else if (const auto* const radio = dynamic_cast<const UI_RadioButton*>(&control)) {
        state.value = radio->GetValue() != 0 ? "true" : "false";
    }
    return state;
}

} // namespace qelui::script
