#include "Dialects.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace qellumenfactory {

namespace {

struct KindRow {
    ControlKind kind;
    std::string_view lumen;
    std::string_view sable;
    bool holdsChildren;
    std::uint32_t keys; // a bit for each Key
};

struct KeyRow {
    Key key;
    std::string_view lumen;
    std::string_view sable;
    ValueType type;
    // If these differ, numbers are whole and between them.
    double least;
    double most;
};

constexpr std::uint32_t Bit(Key key) noexcept
{
    return std::uint32_t{1} << static_cast<unsigned>(key);
}

constexpr std::uint32_t kOnAll = Bit(Key::Identifier) | Bit(Key::Tooltip);
constexpr std::uint32_t kOnGroups =
    kOnAll | Bit(Key::Label) | Bit(Key::Orientation) | Bit(Key::Border) | Bit(Key::Spacing) | Bit(Key::Margin);
constexpr std::uint32_t kOnControls = kOnAll | Bit(Key::Label) | Bit(Key::MinWidth) | Bit(Key::MinHeight);
constexpr std::uint32_t kOnNumbers = kOnControls | Bit(Key::Value) | Bit(Key::MinValue) | Bit(Key::MaxValue) |
                                     Bit(Key::AllowZero) | Bit(Key::DecimalPlaces) | Bit(Key::Step) |
                                     Bit(Key::PostLabel);

constexpr std::array<KindRow, qelui::kControlKindCount> kKinds{{
    {ControlKind::Dialog, "qel_dialog", "dialog", true,
     Bit(Key::Identifier) | Bit(Key::Layout) | Bit(Key::Title) | Bit(Key::Orientation) | Bit(Key::Spacing) |
         Bit(Key::Margin)},
    {ControlKind::Group, "qel_groupbox", "group", true, kOnGroups},
    {ControlKind::RadioGroup, "qel_radio_button_group", "radiogroup", true, kOnGroups},
    {ControlKind::OkCancelRow, "qel_ok_cancel_row", "ok_cancel_row", false, Bit(Key::Identifier)},
    {ControlKind::Popup, "qel_popup", "popup", false, kOnControls},
    {ControlKind::NumberEdit, "qel_number_edit", "unit_edit_number", false, kOnNumbers},
    {ControlKind::HotTextNumber, "qel_hot_text_number", "inline_edit_number", false, kOnNumbers},
    {ControlKind::Button, "qel_button", "button", false, kOnControls},
    {ControlKind::StaticText, "qel_static_text", "static_text", false, kOnControls},
    {ControlKind::CheckBox, "qel_checkbox", "checkbox", false, kOnControls | Bit(Key::Checked)},
    {ControlKind::RadioButton, "qel_radio_button", "radio_button", false, kOnControls | Bit(Key::Checked)},
}};

constexpr double kMostPixels = 10000.0;

constexpr std::array<KeyRow, kKeyCount> kKeys{{
    {Key::Identifier, "identifier", "identifier", ValueType::Text, 0, 0},
    {Key::Layout, "layout", "layout", ValueType::Text, 0, 0},
    {Key::Title, "title", "title", ValueType::Text, 0, 0},
    {Key::Label, "label", "label", ValueType::Text, 0, 0},
    {Key::Orientation, "orientation", "orientation", ValueType::Text, 0, 0},
    {Key::Border, "border", "border", ValueType::Truth, 0, 0},
    {Key::Spacing, "spacing", "spacing", ValueType::Number, 0, kMostPixels},
    {Key::Margin, "margin", "margin", ValueType::Number, 0, kMostPixels},
    {Key::Checked, "checked", "checked", ValueType::Truth, 0, 0},
    {Key::Value, "value", "value", ValueType::Number, 0, 0},
    {Key::MinValue, "minValue", "min_value", ValueType::Number, 0, 0},
    {Key::MaxValue, "maxValue", "max_value", ValueType::Number, 0, 0},
    {Key::AllowZero, "allowZero", "allow_zero", ValueType::Truth, 0, 0},
    {Key::DecimalPlaces, "decimalPlaces", "decimal_places", ValueType::Number, 0, 15},
    {Key::Step, "step", "step", ValueType::Number, 0, 0},
    {Key::PostLabel, "postLabel", "post_label", ValueType::Text, 0, 0},
    {Key::MinWidth, "minWidth", "width", ValueType::Number, 0, kMostPixels},
    {Key::MinHeight, "minHeight", "height", ValueType::Number, 0, kMostPixels},
    {Key::Tooltip, "tooltip", "tooltip", ValueType::Text, 0, 0},
}};

const KindRow& RowOf(ControlKind kind) noexcept
{
    return kKinds[static_cast<std::size_t>(kind)];
}

const KeyRow& RowOf(Key key) noexcept
{
    return kKeys[static_cast<std::size_t>(key)];
}

} // namespace

std::string_view NameOf(ControlKind kind, Dialect dialect) noexcept
{
    return dialect == Dialect::Lumen ? RowOf(kind).lumen : RowOf(kind).sable;
}

std::optional<ControlKind> FindKind(std::string_view name, Dialect dialect) noexcept
{
    for (const KindRow& row : kKinds) {
        if (NameOf(row.kind, dialect) == name) {
            return row.kind;
        }
    }
    return std::nullopt;
}

std::string_view NameOf(Key key, ControlKind kind, Dialect dialect) noexcept
{
    if (dialect == Dialect::Lumen) {
        return RowOf(key).lumen;
    }
    if (key == Key::Label && (kind == ControlKind::Popup || kind == ControlKind::HotTextNumber)) {
        return "name";
    }
    return RowOf(key).sable;
}

std::optional<Key> FindKey(std::string_view name, ControlKind kind, Dialect dialect) noexcept
{
    for (const KeyRow& row : kKeys) {
        if ((RowOf(kind).keys & Bit(row.key)) != 0 && NameOf(row.key, kind, dialect) == name) {
            return row.key;
        }
    }
    return std::nullopt;
}

std::vector<Key> KeysOf(ControlKind kind)
{
    std::vector<Key> keys;
    for (const KeyRow& row : kKeys) {
        if ((RowOf(kind).keys & Bit(row.key)) != 0) {
            keys.push_back(row.key);
        }
    }
    return keys;
}

ValueType TypeOf(Key key) noexcept
{
    return RowOf(key).type;
}

bool HoldsChildren(ControlKind kind) noexcept
{
    return RowOf(kind).holdsChildren;
}

std::optional<std::string> FindValueFault(Key key, const ParameterValue& value)
{
    if (key == Key::Orientation) {
        const auto& text = std::get<std::string>(value);
        if (text != "row" && text != "column") {
            return R"("row" or "column")";
        }
    }
    if (key == Key::Identifier && std::get<std::string>(value).empty()) {
        return "a text that is not empty";
    }
    if (key == Key::Step && !(std::get<double>(value) > 0.0)) {
        return "a number above 0";
    }
    const KeyRow& row = RowOf(key);
    if (row.least < row.most) {
        const double number = std::get<double>(value);
        if (number < row.least || number > row.most || number != std::floor(number)) {
            return "a whole number from " + std::to_string(static_cast<int>(row.least)) + " to " +
                   std::to_string(static_cast<int>(row.most));
        }
    }
    return std::nullopt;
}

} // namespace qellumenfactory
