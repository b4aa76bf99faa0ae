#include "PressableWidgets.h"

#include "AltLetters.h"
#include "NumberField.h"

#include <kestrel/qt/EventSeam.h>

#include <QButtonGroup>
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

namespace kestrelqt {

namespace {

std::string CaptionText(const QAbstractButton& button)
{
    return WithoutAltLetter(button.text()).toStdString();
}

void FollowCaption(QAbstractButton& button, const qelui::UI_ControlView& model, QChar altLetter)
{
    button.setText(WithAltLetter(model.Label(), altLetter));
    button.setEnabled(model.IsEnabled());
    button.setAccessibleName(QString::fromStdString(qelui::NameFromLabel(model.Label())));
}

} // namespace

ButtonWidget::ButtonWidget(qelui::UI_Button& button, QWidget* parent)
    : mModel(button), mWidget(new QPushButton(parent))
{
    DressWidget(*mWidget, button);
    KeepLeastSize(*mWidget, button);
    mWidget->setAutoDefault(true); // Return presses the button that has the focus
    QObject::connect(mWidget, &QPushButton::clicked, mWidget, [this] {
        AtSeam([this] {
            CommitTyping(*mWidget);                     // OK must not lose what is typed when a key presses it
            mWidget->setFocus(Qt::ShortcutFocusReason); // Qt leaves it elsewhere when an Alt key presses
            mModel.Press();
        });
    });
    Follow();
}

QWidget* ButtonWidget::Widget() const
{
    return mWidget;
}

void ButtonWidget::Follow()
{
    FollowCaption(*mWidget, mModel, AltLetter());
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
    // Not `clicked`, which assistive tools do not cause.
    QObject::connect(mWidget, &QCheckBox::toggled, mWidget, [this](bool checked) {
        AtSeam([this, checked] {
            CommitTyping(*mWidget);
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
    FollowCaption(*mWidget, mModel, AltLetter());
    const QSignalBlocker quiet(mWidget); // what the model says is not entered
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
    // The model excludes. A group of its own that excludes nothing keeps Qt from doing so, too; without
    // `autoExclusive` assistive tools would hear of a check box.
    auto* const alone = new QButtonGroup(mWidget);
    alone->setExclusive(false);
    alone->addButton(mWidget);
    QObject::connect(mWidget, &QRadioButton::toggled, mWidget, [this] {
        AtSeam([this] {
            CommitTyping(*mWidget);
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
    FollowCaption(*mWidget, mModel, AltLetter());
    const QSignalBlocker quiet(mWidget); // what the model says is not entered
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
