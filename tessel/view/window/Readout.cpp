#include "Readout.h"

#include <QFontMetrics>
#include <QPainter>
#include <utility>

namespace tessel::view {
namespace {

constexpr int kMargin = 4; // screen units on each side

} // namespace

Readout::Readout(QString name, int leastWidth, QWidget* parent)
    : QWidget(parent), mName(std::move(name)), mLeastWidth(leastWidth)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName(mName);
}

void Readout::Show(const QString& text)
{
    if (text != mText) {
        mText = text;
        setAccessibleName(text.isEmpty() ? mName : mName + ": " + text);
        update();
    }
}

QSize Readout::sizeHint() const
{
    return {mLeastWidth, fontMetrics().height() + 4};
}

void Readout::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRect area = rect().adjusted(kMargin, 0, -kMargin, 0);
    painter.drawText(area, Qt::AlignVCenter | Qt::AlignLeft,
                     fontMetrics().elidedText(mText, Qt::ElideRight, area.width()));
}

} // namespace tessel::view
