/// One control of a dialog as a real widget.
#pragma once

#include <kestrel/qelui/controls/UI_ControlView.h>
#include <kestrel/qelui/script/ControlDriver.h>

#include <QString>
#include <memory>

class QWidget;

namespace kestrelqt {

/// Binds a model to a widget: follows the model, and enters into it what a person does. The widget belongs to
/// its Qt parent, the binding to the window; both end together. [ui-thread]
class ControlWidget {
public:
    ControlWidget() = default;
    virtual ~ControlWidget();
    ControlWidget(const ControlWidget&) = delete;
    ControlWidget& operator=(const ControlWidget&) = delete;

    /// What a person acts on, and what has the focus.
    [[nodiscard]] virtual QWidget* Widget() const = 0;
    /// Brings the widget in line with the model, without entering anything.
    virtual void Follow() = 0;
    /// What a person sees, read from the widget.
    [[nodiscard]] virtual qelui::script::SeenState See() const = 0;
};

/// The widget of a control that is no group. @return null for a kind that has no widget.
[[nodiscard]] std::unique_ptr<ControlWidget> MakeControlWidget(qelui::UI_ControlView& control, QWidget* parent);

/// A label as a name for assistive tools: without its colon and dots.
[[nodiscard]] QString AccessibleNameOf(const std::string& label);

/// Tooltip and name, which all kinds take from their model alike.
void DressWidget(QWidget& widget, const qelui::UI_ControlView& control);

/// Gives the widget its model's least size, where that has one, but no less height than the widget needs.
void KeepLeastSize(QWidget& widget, const qelui::UI_ControlView& control);

} // namespace kestrelqt
