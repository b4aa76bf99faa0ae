/// A field that shows and takes a number.
#pragma once

#include <kestrel/qelui/controls/UI_Number.h>

#include <QLineEdit>

namespace kestrelqt {

/// Shows a number model. Typed text is entered on Return, or when the field loses the focus after an edit. Up
/// and Down change the number by a step, Page Up and Page Down by ten; Escape undoes an edit. Text that is
/// not a number is discarded.
class NumberField : public QLineEdit {
public:
    /// `number` outlives the field.
    explicit NumberField(qelui::UI_NumberView& number, QWidget* parent = nullptr);

    /// Updates text and enabled state from the model; discards an unfinished edit.
    void Follow();

    /// Whether a person has changed the text since the last update from the model.
    [[nodiscard]] bool IsEdited() const noexcept { return mEdited; }

protected:
    [[nodiscard]] qelui::UI_NumberView& Number() const noexcept { return mNumber; }
    /// Enters the model's value moved by so many steps.
    void StepBy(double steps);
    void CommitEdit();

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    qelui::UI_NumberView& mNumber;
    bool mEdited = false;
};

} // namespace kestrelqt
