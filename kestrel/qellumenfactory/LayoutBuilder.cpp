#include "LayoutBuilder.h"

#include <kestrel/qelui/controls/UI_Button.h>
#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/controls/UI_StaticText.h>

#include <utility>

namespace qellumenfactory {

namespace {

/// A parameter that the parser has checked to be a small whole number.
int Whole(const LayoutNode& node, Key key, int fallback)
{
    return static_cast<int>(node.Number(key, fallback));
}

void SetUpGroup(qelui::UI_Group& group, const LayoutNode& node)
{
    group.SetOrientation(node.Text(Key::Orientation, "column") == "row" ? qelui::Orientation::Row
                                                                        : qelui::Orientation::Column);
    group.SetSpacing(Whole(node, Key::Spacing, -1));
    group.SetMargin(Whole(node, Key::Margin, -1));
    if (const Parameter* const border = node.Find(Key::Border)) {
        group.SetBorder(std::get<bool>(border->value));
    }
}

void SetUpNumber(qelui::UI_NumberView& number, const LayoutNode& node)
{
    number.SetLimits(node.Number(Key::MinValue), node.Number(Key::MaxValue));
    number.SetZeroAllowed(node.Truth(Key::AllowZero, false));
    number.SetDecimalPlaces(Whole(node, Key::DecimalPlaces, 0));
    if (const std::optional<double> step = node.Number(Key::Step)) {
        number.SetStep(*step);
    }
    number.SetPostLabel(node.Text(Key::PostLabel));
    number.SetValue(node.Number(Key::Value, 0.0));
}

void AddChildren(qelui::UI_Group& group, const LayoutNode& node);

template <class Control>
std::unique_ptr<Control> Make(const LayoutNode& node)
{
    auto control = std::make_unique<Control>(node.Text(Key::Identifier));
    control->SetLabel(node.Text(Key::Label));
    control->SetTooltip(node.Text(Key::Tooltip));
    control->SetMinSize(Whole(node, Key::MinWidth, 0), Whole(node, Key::MinHeight, 0));
    return control;
}

template <class Group>
std::unique_ptr<Group> MakeGroup(const LayoutNode& node)
{
    auto group = Make<Group>(node);
    SetUpGroup(*group, node);
    AddChildren(*group, node);
    return group;
}

template <class Number>
std::unique_ptr<Number> MakeNumber(const LayoutNode& node)
{
    auto number = Make<Number>(node);
    SetUpNumber(*number, node);
    return number;
}

void AddControl(qelui::UI_Group& group, const LayoutNode& node)
{
    switch (node.kind) {
    case ControlKind::Dialog: // the parser allows none here
        break;
    case ControlKind::Group:
        group.Add(MakeGroup<qelui::UI_Group>(node));
        break;
    case ControlKind::RadioGroup:
        group.Add(MakeGroup<qelui::UI_RadioGroup>(node));
        break;
    case ControlKind::OkCancelRow:
        group.Add(std::make_unique<qelui::UI_OkCancelRow>(node.Text(Key::Identifier)));
        break;
    case ControlKind::Popup:
        group.Add(Make<qelui::UI_Popup>(node));
        break;
    case ControlKind::NumberEdit:
        group.Add(MakeNumber<qelui::UI_NumberEdit>(node));
        break;
    case ControlKind::HotTextNumber:
        group.Add(MakeNumber<qelui::UI_HotTextNumber>(node));
        break;
    case ControlKind::Button:
        group.Add(Make<qelui::UI_Button>(node));
        break;
    case ControlKind::StaticText:
        group.Add(Make<qelui::UI_StaticText>(node));
        break;
    case ControlKind::CheckBox:
        group.Add(Make<qelui::UI_CheckBox>(node)).SetChecked(node.Truth(Key::Checked, false));
        break;
    case ControlKind::RadioButton:
        group.Add(Make<qelui::UI_RadioButton>(node)).SetValue(node.Truth(Key::Checked, false) ? 1 : 0);
        break;
    }
}

void AddChildren(qelui::UI_Group& group, const LayoutNode& node)
{
    for (const LayoutNode& child : node.children) {
        AddControl(group, child);
    }
}

} // namespace

std::unique_ptr<qelui::UI_Dialog> BuildDialog(const LayoutNode& root)
{
    auto dialog = std::make_unique<qelui::UI_Dialog>(root.Text(Key::Identifier));
    dialog->SetTitle(root.Text(Key::Title));
    SetUpGroup(*dialog, root);
    AddChildren(*dialog, root);
    return dialog;
}

} // namespace qellumenfactory
