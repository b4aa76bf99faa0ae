#include "ScrubField.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace kestrelqt {

namespace {

constexpr double kPixelsPerStep = 2.0;
constexpr int kDragThreshold = 3; // pixels: less is a click

bool IsPartOfNumber(const QString& typed)
{
    return typed.size() == 1 && (typed[0].isDigit() || QStringLiteral("+-.").contains(typed[0]));
}

double Speed(Qt::KeyboardModifiers modifiers)
{
    if (modifiers.testFlag(Qt::ShiftModifier)) {
        return 10.0;
    }
    return modifiers.testFlag(Qt::ControlModifier) ? 0.1 : 1.0;
}

} // namespace

ScrubField::ScrubField(qelui::UI_NumberView& number, QWidget* parent) : NumberField(number, parent)
{
    EndTyping();
}

void ScrubField::BeginTyping()
{
    mMode = Mode::Typing;
    setReadOnly(false);
    setFrame(true);
    setCursor(Qt::IBeamCursor);
    selectAll();
    update();
}

void ScrubField::EndTyping()
{
    mMode = Mode::Resting;
    setReadOnly(true);
    setFrame(false);
    setCursor(Qt::SizeHorCursor);
    deselect();
    update();
}

void ScrubField::keyPressEvent(QKeyEvent* event)
{
    const bool isHeld = mMode == Mode::Pressed || mMode == Mode::Dragging;
    if (isHeld && event->key() == Qt::Key_Escape) {
        mMode = Mode::Resting;
        Follow();
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && mMode == Mode::Resting) {
        BeginTyping();
        return;
    }
    if (mMode == Mode::Resting && IsPartOfNumber(event->text())) {
        BeginTyping(); // the digit then replaces the whole number
    }
    if (mMode == Mode::Typing && (isReturn || event->key() == Qt::Key_Escape)) {
        if (isReturn) {
            CommitEdit();
        } else {
            Follow();
        }
        EndTyping();
        return;
    }
    NumberField::keyPressEvent(event);
    if (mMode == Mode::Resting) {
        deselect();
    }
}

void ScrubField::focusOutEvent(QFocusEvent* event)
{
    NumberField::focusOutEvent(event);
    if (mMode == Mode::Typing) {
        EndTyping();
    }
}

void ScrubField::mousePressEvent(QMouseEvent* event)
{
    if (mMode == Mode::Typing || event->button() != Qt::LeftButton) {
        NumberField::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    mMode = Mode::Pressed;
    mLastX = event->globalPosition().toPoint().x();
    mDragged = Number().GetValue();
}

void ScrubField::mouseMoveEvent(QMouseEvent* event)
{
    if (mMode == Mode::Typing) {
        NumberField::mouseMoveEvent(event);
        return;
    }
    const int x = event->globalPosition().toPoint().x();
    if (mMode == Mode::Pressed && qAbs(x - mLastX) >= kDragThreshold) {
        mMode = Mode::Dragging;
    }
    if (mMode == Mode::Dragging) {
        mDragged += (x - mLastX) / kPixelsPerStep * Number().Step() * Speed(event->modifiers());
        // Kept within the limits during the drag, so that a drag in the other direction takes effect at once.
        mDragged = std::max(mDragged, Number().Minimum().value_or(mDragged));
        mDragged = std::min(mDragged, Number().Maximum().value_or(mDragged));
        mLastX = x;
        const double shown = Number().Constrain(mDragged);
        setText(QString::fromStdString(qelui::FormatNumber(shown, Number().DecimalPlaces())));
    }
}

void ScrubField::mouseReleaseEvent(QMouseEvent* event)
{
    if (mMode == Mode::Typing) {
        NumberField::mouseReleaseEvent(event);
        return;
    }
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const bool dragged = mMode == Mode::Dragging;
    mMode = Mode::Resting;
    if (dragged) {
        Number().EnterValue(mDragged);
        Follow();
    }
}

void ScrubField::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (mMode == Mode::Typing) {
        NumberField::mouseDoubleClickEvent(event);
    } else {
        BeginTyping();
    }
}

void ScrubField::paintEvent(QPaintEvent* event)
{
    if (mMode == Mode::Typing) {
        NumberField::paintEvent(event);
        return;
    }
    QPainter painter(this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    QFont hot = font();
    hot.setUnderline(isEnabled());
    painter.setFont(hot);
    painter.setPen(palette().color(group, isEnabled() ? QPalette::Link : QPalette::Text));
    const QRect inner = rect().adjusted(4, 0, -4, 0);
    painter.drawText(inner, Qt::AlignRight | Qt::AlignVCenter, text());
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(palette().color(QPalette::Link), 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
    }
}

} // namespace kestrelqt
