/// Mouse and keyboard events as a person's input sends them.
#pragma once

#include <QString>
#include <Qt>

class QPoint;
class QWidget;

namespace kestrelqt {

/// Presses and releases the left mouse button at `at`, in the widget's own coordinates.
void Click(QWidget& widget, const QPoint& at);

/// Gives the widget the focus, as a click or the tab key would.
void Focus(QWidget& widget);

/// Presses and releases one key.
void PressKey(QWidget& widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);

/// Types a text key by key.
void TypeText(QWidget& widget, const QString& text);

} // namespace kestrelqt
