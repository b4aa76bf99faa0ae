/// Popups, numbers and static texts.
#pragma once

#include "ControlWidget.h"

#include <kestrel/qelui/controls/UI_Number.h>
#include <kestrel/qelui/controls/UI_Popup.h>
#include <kestrel/qelui/controls/UI_StaticText.h>

namespace kestrelqt {

class ChoiceBox;
class ElidedLabel;
class NumberField;

class PopupWidget final : public ControlWidget {
public:
    PopupWidget(qelui::UI_Popup& popup, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_Popup& mModel;
    ChoiceBox* mWidget;
};

/// Number edits and hot text, with the unit behind them.
class NumberWidget final : public ControlWidget {
public:
    NumberWidget(qelui::UI_NumberView& number, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_NumberView& mModel;
    NumberField* mWidget;
};

class StaticTextWidget final : public ControlWidget {
public:
    StaticTextWidget(qelui::UI_StaticText& text, QWidget* parent);
    [[nodiscard]] QWidget* Widget() const override;
    void Follow() override;
    [[nodiscard]] qelui::script::SeenState See() const override;

private:
    qelui::UI_StaticText& mModel;
    ElidedLabel* mWidget;
};

} // namespace kestrelqt
