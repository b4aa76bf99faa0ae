/// One control of a dialog as a real widget.
#pragma once

#include <kestrel/qelui/controls/UI_ControlView.h>
#include <kestrel/qelui/script/ControlDriver.h>

#include <QString>
#include <memory>

class QWidget;

namespace kestrelqt {

/// Binds a model to a widget: shows the model, and enters what a person does. The widget is owned by its Qt
/// parent, the binding by the window; both exist equally long. [ui-thread]
class ControlWidget {
public:
    ControlWidget() = default;
    virtual ~ControlWidget();
    ControlWidget(const ControlWidget&) = delete;
    ControlWidget& operator=(const ControlWidget&) = delete;

    /// The widget that a person uses and that has the focus.
    [[nodiscard]] virtual QWidget* Widget() const = 0;
    /// Updates the widget from the model, without entering anything.
    virtual void Follow() = 0;
    /// The state that the widget shows.
    [[nodiscard]] virtual qelui::script::SeenState See() const = 0;

    /// The letter that with Alt leads to the control; null for none. Where the control has a caption, it is
    /// underlined there, else in the label. @{
    [[nodiscard]] QChar AltLetter() const noexcept { return mAltLetter; }
    void SetAltLetter(QChar letter) noexcept { mAltLetter = letter; }
    /// @}

private:
    QChar mAltLetter;
};

/// Makes the widget of a control. @return null for groups, which have none.
[[nodiscard]] std::unique_ptr<ControlWidget> MakeControlWidget(qelui::UI_ControlView& control, QWidget* parent);

/// Sets what all kinds have: name, tooltip, texts for assistive tools.
void DressWidget(QWidget& widget, const qelui::UI_ControlView& control);

/// Gives the widget its model's minimum size, if that has one, but at least the height that it needs.
void KeepLeastSize(QWidget& widget, const qelui::UI_ControlView& control);

} // namespace kestrelqt
