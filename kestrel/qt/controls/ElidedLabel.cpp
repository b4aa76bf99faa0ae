#include "ElidedLabel.h"

#include <QPainter>

namespace kestrelqt {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text, Qt::TextElideMode mode, const QString& explanation)
{
    mText = text;
    mMode = mode;
    setToolTip(text.isEmpty() ? explanation : text + QLatin1Char('\n') + explanation);
    setAccessibleDescription(text);
    updateGeometry();
    update();
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, fontMetrics().elidedText(mText, mMode, width()));
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {minimumWidth(), fontMetrics().height() + 6};
}

} // namespace kestrelqt
