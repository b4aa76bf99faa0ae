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
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QLineEdit::textEdited, this, [this] { mEdited = isUndoAvailable() || text() != mFollowed; });
    Follow();
}

QSize NumberField::sizeHint() const
{
    // Numbers without limits are seldom longer; a longer one widens its field.
    constexpr double kUsualLargest = -99999.0;
    constexpr int kQtWidthInLetters = 17; // of QLineEdit's own hint
    const QFontMetrics metrics = fontMetrics();
    const int decimals = mNumber.DecimalPlaces();
    int widest = metrics.horizontalAdvance(mFollowed);
    for (const double number :
         {mNumber.Minimum().value_or(kUsualLargest), mNumber.Maximum().value_or(kUsualLargest)}) {
        widest = qMax(widest,
                      metrics.horizontalAdvance(QString::fromStdString(qelui::FormatNumber(number, decimals))));
    }
    QSize hint = QLineEdit::sizeHint();
    const int frame = hint.width() - metrics.horizontalAdvance(QLatin1Char('x')) * kQtWidthInLetters;
    hint.setWidth(qMax(widest + frame + metrics.horizontalAdvance(QLatin1Char('0')), minimumWidth()));
    return hint;
}

void NumberField::Follow()
{
    const QString shown = QString::fromStdString(mNumber.ShownText());
    if (shown.size() != mFollowed.size()) {
        updateGeometry();
    }
    mFollowed = shown;
    setText(shown); // removes what Ctrl+Z would bring back
    mEdited = false;
    setEnabled(mNumber.IsEnabled());
}

void NumberField::StepBy(double steps)
{
    // Handlers may move a number, such as to whole frames: the step is doubled until it leads to another one.
    constexpr int kMostTries = 20;
    const double start = mNumber.GetValue();
    double distance = steps * mNumber.Step();
    for (int attempt = 0; attempt < kMostTries; ++attempt, distance *= 2) {
        mNumber.EnterValue(start + distance);
        if (mNumber.GetValue() != start || mNumber.Constrain(start + distance) == start) {
            break;
        }
    }
    selectAll();
}

void NumberField::CommitEdit()
{
    if (!IsEdited()) {
        return;
    }
    const std::string typed = text().toStdString();
    Follow(); // first, because a handler may ask for this edit again
    mNumber.EnterText(typed);
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
        if (IsEdited()) {
            CommitEdit();
            selectAll();
            return; // the next Return presses the dialog's default button
        }
        break;
    case Qt::Key_Escape:
        if (IsEdited()) {
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

void CommitTyping(const QWidget& window)
{
    if (auto* const field = dynamic_cast<NumberField*>(window.window()->focusWidget())) {
        field->CommitEdit();
    }
}

} // namespace kestrelqt
