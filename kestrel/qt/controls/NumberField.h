/// A field that shows and takes a number.
#pragma once

#include <kestrel/qelui/controls/UI_Number.h>

#include <QLineEdit>

namespace kestrelqt {

/// Shows a number model and enters what is typed into it: on Return, or when the field loses the focus after
/// an edit. Up and Down step, Page Up and Page Down take ten steps, Escape takes an edit back. Text that is
/// no number is taken back.
class NumberField : public QLineEdit {
public:
    /// `number` outlives the field.
    explicit NumberField(qelui::UI_NumberView& number, QWidget* parent = nullptr);

    /// Brings text and enabled state in line with the model; drops an edit that is under way.
    void Follow();

    /// Whether a person has changed the text since it was last in line with the model.
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
