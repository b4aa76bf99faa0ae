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

    /// Whether a person has typed since the last update from the model. Typing that was undone is no edit: the
    /// model's value may have more digits than the field shows, and keeps them.
    [[nodiscard]] bool IsEdited() const noexcept { return mEdited; }

    /// Enters an unfinished edit, as leaving the field does.
    void CommitEdit();

    /// As wide as the longest number that the limits allow.
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] qelui::UI_NumberView& Number() const noexcept { return mNumber; }
    /// Enters the model's value moved by so many steps.
    void StepBy(double steps);

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    qelui::UI_NumberView& mNumber;
    QString mFollowed; ///< the model's text
    bool mEdited = false;
};

/// Enters the unfinished edit of the field that has the focus in the window, if one has it. Keys that press a
/// button leave the focus in the field.
void CommitTyping(const QWidget& window);

} // namespace kestrelqt
