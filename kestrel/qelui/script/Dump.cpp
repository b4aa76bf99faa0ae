#include "Dump.h"

#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/serialization/Value.h>
#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>

#include <cstdint>
#include <memory>
#include <utility>

namespace qelui::script {

namespace {

using qelcore::serialization::AddToObject;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

Value Items(const std::vector<SeenItem>& seenItems)
{
    Array items;
    for (const SeenItem& seen : seenItems) {
        Object item;
        AddToObject(item, "text", Value(seen.text));
        AddToObject(item, "enabled", Value(seen.enabled));
        items.push_back(Value(std::move(item)));
    }
    return Value(std::move(items));
}

void AddNumber(Object& object, const UI_NumberView& number)
{
    AddToObject(object, "value", Value(number.GetValue()));
    AddToObject(object, "decimals", Value(std::int64_t{number.DecimalPlaces()}));
    if (number.Minimum()) {
        AddToObject(object, "minimum", Value(*number.Minimum()));
    }
    if (number.Maximum()) {
        AddToObject(object, "maximum", Value(*number.Maximum()));
    }
}

Object Describe(UI_ControlView& control, ControlDriver& driver)
{
    Object object;
    AddToObject(object, "id", Value(control.Identifier()));
    AddToObject(object, "kind", Value(NameOf(control.Kind())));
    AddToObject(object, "label", Value(control.Label()));
    if (dynamic_cast<const UI_Group*>(&control) != nullptr) {
        AddToObject(object, "enabled", Value(control.IsEnabled()));
        return object;
    }
    const SeenState seen = driver.See(control);
    AddToObject(object, "text", Value(seen.text));
    AddToObject(object, "enabled", Value(seen.enabled));
    if (const auto* const number = dynamic_cast<const UI_NumberView*>(&control)) {
        AddNumber(object, *number);
    } else if (const auto* const popup = dynamic_cast<const UI_Popup*>(&control)) {
        AddToObject(object, "value", Value(std::int64_t{popup->GetValue()}));
        AddToObject(object, "items", Items(seen.items));
    } else if (const auto* const box = dynamic_cast<const UI_CheckBox*>(&control)) {
        AddToObject(object, "value", Value(box->IsChecked()));
    } else if (const auto* const radio = dynamic_cast<const UI_RadioButton*>(&control)) {
        AddToObject(object, "value", Value(radio->GetValue() != 0));
    }
    return object;
}

} // namespace

std::string DumpDialog(UI_Dialog& dialog, ControlDriver& driver)
{
    Array controls;
    for (UI_ControlView* const control : dialog.AllControls()) {
        controls.push_back(Value(Describe(*control, driver)));
    }
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(controls)),
                                                     /*formatted=*/true) +
           '\n';
}

} // namespace qelui::script
