/// Hot text: a number that a person drags sideways.
#pragma once

#include "NumberField.h"

namespace kestrelqt {

/// Looks like underlined text. A drag changes the number by one step every two pixels, with Shift by ten
/// steps, with Control by a tenth. The number is shown during the drag and entered once, on release; Escape
/// undoes the drag. A double click, Return or a digit turns the text into a field to type into.
class ScrubField final : public NumberField {
public:
    explicit ScrubField(qelui::UI_NumberView& number, QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void BeginTyping();
    void EndTyping();

    enum class Mode { Resting, Pressed, Dragging, Typing };
    Mode mMode = Mode::Resting;
    int mLastX = 0;
    double mDragged = 0.0; ///< the number the drag has come to, not yet constrained
};

} // namespace kestrelqt
