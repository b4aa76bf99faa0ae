/// Buttons, check boxes and radio buttons.
#pragma once

#include "ControlWidget.h"

#include <kestrel/qelui/controls/UI_Button.h>

class QCheckBox;
class QPushButton;
class QRadioButton;

namespace kestrelqt {

class ButtonWidget final : public ControlWidget {
public:
    ButtonWidget(qelui::UI_Button& button, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_Button& mModel;
    QPushButton* mWidget;
};

class CheckBoxWidget final : public ControlWidget {
public:
    CheckBoxWidget(qelui::UI_CheckBox& box, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_CheckBox& mModel;
    QCheckBox* mWidget;
};

/// The model does the exclusion: code may choose none or several buttons of a group.
class RadioButtonWidget final : public ControlWidget {
public:
    RadioButtonWidget(qelui::UI_RadioButton& button, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_RadioButton& mModel;
    QRadioButton* mWidget;
};

} // namespace kestrelqt
