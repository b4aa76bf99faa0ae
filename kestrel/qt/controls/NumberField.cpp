#include "NumberField.h"

#include <kestrel/qt/EventSeam.h>

#include <QKeyEvent>

namespace kestrelqt {

namespace {

constexpr double kPageSteps = 10.0;

} // namespace

NumberField::NumberField(qelui::UI_NumberView& number, QWidget* parent) : QLineEdit(parent), mNumber(number)
{
    setAlignment(Qt::AlignRight);
    connect(this, &QLineEdit::textEdited, this, [this] { mEdited = true; });
    Follow();
}

void NumberField::Follow()
{
    setText(QString::fromStdString(mNumber.ShownText()));
    setEnabled(mNumber.IsEnabled());
    mEdited = false;
}

void NumberField::StepBy(double steps)
{
    mNumber.EnterValue(mNumber.GetValue() + steps * mNumber.Step());
    selectAll();
}

void NumberField::CommitEdit()
{
    if (!mEdited) {
        return;
    }
    mEdited = false;
    if (const auto value = qelui::ParseNumber(text().toStdString())) {
        mNumber.EnterValue(*value);
    }
    Follow();
}

bool NumberField::event(QEvent* event)
{
    bool isHandled = true;
    AtSeam([&] { isHandled = QLineEdit::event(event); });
    return isHandled;
}

void NumberField::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (mEdited) {
            CommitEdit();
            selectAll();
            return; // the next Return presses the dialog's default button
        }
        break;
    case Qt::Key_Escape:
        if (mEdited) {
            Follow();
            selectAll();
            return;
        }
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const bool up = event->key() == Qt::Key_Up || event->key() == Qt::Key_PageUp;
        const bool page = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
        CommitEdit();
        StepBy((up ? 1.0 : -1.0) * (page ? kPageSteps : 1.0));
        return;
    }
    default:
        break;
    }
    QLineEdit::keyPressEvent(event);
}

void NumberField::focusOutEvent(QFocusEvent* event)
{
    CommitEdit();
    QLineEdit::focusOutEvent(event);
}

} // namespace kestrelqt
