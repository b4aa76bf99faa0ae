#include "PersonEvents.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

namespace kestrelqt {

namespace {

void SendMouse(QWidget& widget, QEvent::Type type, const QPoint& at, Qt::MouseButtons held)
{
    QMouseEvent event(type, QPointF(at), QPointF(widget.mapToGlobal(at)), Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

void SendKey(QWidget& widget, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    QKeyEvent event(type, key, modifiers, text);
    QApplication::sendEvent(&widget, &event);
}

} // namespace

void Click(QWidget& widget, const QPoint& at)
{
    const QPointer<QWidget> alive(&widget);
    SendMouse(widget, QEvent::MouseButtonPress, at, Qt::LeftButton);
    if (alive) {
        SendMouse(widget, QEvent::MouseButtonRelease, at, Qt::NoButton);
    }
}

void Focus(QWidget& widget)
{
    widget.setFocus(Qt::TabFocusReason);
}

void PressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    const QPointer<QWidget> alive(&widget);
    SendKey(widget, QEvent::KeyPress, key, modifiers, {});
    if (alive) {
        SendKey(widget, QEvent::KeyRelease, key, modifiers, {});
    }
}

void TypeText(QWidget& widget, const QString& text)
{
    for (const QChar character : text) {
        SendKey(widget, QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
        SendKey(widget, QEvent::KeyRelease, 0, Qt::NoModifier, QString(character));
    }
}

} // namespace kestrelqt
