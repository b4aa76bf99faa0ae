#include "ElidedLabel.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

namespace kestrelqt {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text, const QString& explanation)
{
    mText = text;
    setToolTip(text.isEmpty() ? explanation : text + QLatin1Char('\n') + explanation);
    setAccessibleDescription(text);
    setFocusPolicy(text.isEmpty() ? Qt::NoFocus : Qt::StrongFocus);
    updateGeometry();
    update();
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    constexpr int kMargin = 3;
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    const QRect inner = rect().adjusted(kMargin, 0, -kMargin, 0);
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignVCenter, ElidedPath(mText, fontMetrics(), inner.width()));
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(palette().color(QPalette::Link), 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 3, 3);
    }
}

void ElidedLabel::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        Copy();
    } else {
        QLabel::keyPressEvent(event);
    }
}

void ElidedLabel::contextMenuEvent(QContextMenuEvent* event)
{
    if (!mText.isEmpty()) {
        QMenu menu(this);
        menu.addAction(tr("Copy"), this, [this] { Copy(); });
        menu.exec(event->globalPos());
    }
}

void ElidedLabel::Copy() const
{
    QApplication::clipboard()->setText(mText);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {minimumWidth(), fontMetrics().height() + 6};
}

QString ElidedPath(const QString& text, const QFontMetrics& metrics, int width)
{
    const qsizetype slash = text.lastIndexOf(QLatin1Char('/'));
    const QString name = text.mid(slash); // with its slash
    const int room = width - metrics.horizontalAdvance(name);
    if (slash <= 0 || metrics.horizontalAdvance(text) <= width) {
        return metrics.elidedText(text, Qt::ElideMiddle, width);
    }
    if (room <= metrics.horizontalAdvance(QChar(0x2026))) {
        return metrics.elidedText(text.mid(slash + 1), Qt::ElideMiddle, width);
    }
    return metrics.elidedText(text.left(slash), Qt::ElideRight, room) + name;
}

} // namespace kestrelqt
