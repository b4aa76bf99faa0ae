#include "ControlWidget.h"

#include "PressableWidgets.h"
#include "ValueWidgets.h"

#include <QWidget>

namespace kestrelqt {

ControlWidget::~ControlWidget() = default;

std::unique_ptr<ControlWidget> MakeControlWidget(qelui::UI_ControlView& control, QWidget* parent)
{
    using namespace qelui;
    switch (control.Kind()) {
    case ControlKind::Popup:
        return std::make_unique<PopupWidget>(static_cast<UI_Popup&>(control), parent);
    case ControlKind::NumberEdit:
    case ControlKind::HotTextNumber:
        return std::make_unique<NumberWidget>(static_cast<UI_NumberView&>(control), parent);
    case ControlKind::StaticText:
        return std::make_unique<StaticTextWidget>(static_cast<UI_StaticText&>(control), parent);
    case ControlKind::Button:
        return std::make_unique<ButtonWidget>(static_cast<UI_Button&>(control), parent);
    case ControlKind::CheckBox:
        return std::make_unique<CheckBoxWidget>(static_cast<UI_CheckBox&>(control), parent);
    case ControlKind::RadioButton:
        return std::make_unique<RadioButtonWidget>(static_cast<UI_RadioButton&>(control), parent);
    case ControlKind::Dialog:
    case ControlKind::Group:
    case ControlKind::RadioGroup:
    case ControlKind::OkCancelRow:
        break;
    }
    return nullptr;
}

void DressWidget(QWidget& widget, const qelui::UI_ControlView& control)
{
    widget.setObjectName(QString::fromStdString(control.Identifier()));
    widget.setToolTip(QString::fromStdString(control.Tooltip()));
    widget.setAccessibleName(QString::fromStdString(qelui::NameFromLabel(control.Label())));
    widget.setAccessibleDescription(QString::fromStdString(control.Tooltip()));
}

void KeepLeastSize(QWidget& widget, const qelui::UI_ControlView& control)
{
    const QSize least = widget.minimumSizeHint(); // an explicit minimum would take its place
    if (control.MinWidth() > 0) {
        widget.setMinimumWidth(control.MinWidth());
    }
    if (control.MinHeight() > 0) {
        widget.setMinimumHeight(qMax(control.MinHeight(), least.height()));
    }
}

} // namespace kestrelqt
