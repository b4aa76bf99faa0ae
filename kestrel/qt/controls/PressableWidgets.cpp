#include "PressableWidgets.h"

#include <kestrel/qt/EventSeam.h>

#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>

namespace kestrelqt {

namespace {

/// Escapes ampersands, which Qt would take for mnemonics.
QString Caption(const std::string& label)
{
    return QString::fromStdString(label).replace(QLatin1Char('&'), QLatin1String("&&"));
}

std::string CaptionText(const QAbstractButton& button)
{
    return button.text().replace(QLatin1String("&&"), QLatin1String("&")).toStdString();
}

void FollowCaption(QAbstractButton& button, const qelui::UI_ControlView& model)
{
    button.setText(Caption(model.Label()));
    button.setEnabled(model.IsEnabled());
    button.setAccessibleName(AccessibleNameOf(model.Label()));
}

} // namespace

ButtonWidget::ButtonWidget(qelui::UI_Button& button, QWidget* parent)
    : mModel(button), mWidget(new QPushButton(parent))
{
    DressWidget(*mWidget, button);
    KeepLeastSize(*mWidget, button);
    mWidget->setAutoDefault(true); // Return presses the button that has the focus
    QObject::connect(mWidget, &QPushButton::clicked, mWidget, [this] { AtSeam([this] { mModel.Press(); }); });
    Follow();
}

QWidget* ButtonWidget::Widget() const
{
    return mWidget;
}

void ButtonWidget::Follow()
{
    FollowCaption(*mWidget, mModel);
}

qelui::script::SeenState ButtonWidget::See() const
{
    return {.value = {}, .text = CaptionText(*mWidget), .enabled = mWidget->isEnabled(), .items = {}};
}

CheckBoxWidget::CheckBoxWidget(qelui::UI_CheckBox& box, QWidget* parent)
    : mModel(box), mWidget(new QCheckBox(parent))
{
    DressWidget(*mWidget, box);
    KeepLeastSize(*mWidget, box);
    QObject::connect(mWidget, &QCheckBox::clicked, mWidget, [this](bool checked) {
        AtSeam([this, checked] {
            mModel.EnterChecked(checked);
            Follow();
        });
    });
    Follow();
}

QWidget* CheckBoxWidget::Widget() const
{
    return mWidget;
}

void CheckBoxWidget::Follow()
{
    FollowCaption(*mWidget, mModel);
    mWidget->setChecked(mModel.IsChecked());
}

qelui::script::SeenState CheckBoxWidget::See() const
{
    return {.value = mWidget->isChecked() ? "true" : "false",
            .text = CaptionText(*mWidget),
            .enabled = mWidget->isEnabled(),
            .items = {}};
}

RadioButtonWidget::RadioButtonWidget(qelui::UI_RadioButton& button, QWidget* parent)
    : mModel(button), mWidget(new QRadioButton(parent))
{
    DressWidget(*mWidget, button);
    KeepLeastSize(*mWidget, button);
    mWidget->setAutoExclusive(false);
    QObject::connect(mWidget, &QRadioButton::clicked, mWidget, [this] {
        AtSeam([this] {
            mModel.Press();
            Follow(); // because Qt unchecks a chosen button that is clicked
        });
    });
    Follow();
}

QWidget* RadioButtonWidget::Widget() const
{
    return mWidget;
}

void RadioButtonWidget::Follow()
{
    FollowCaption(*mWidget, mModel);
    mWidget->setChecked(mModel.GetValue() == 1);
}

qelui::script::SeenState RadioButtonWidget::See() const
{
    return {.value = mWidget->isChecked() ? "true" : "false",
            .text = CaptionText(*mWidget),
            .enabled = mWidget->isEnabled(),
            .items = {}};
}

} // namespace kestrelqt
