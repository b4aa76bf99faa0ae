#include "ColorArea.h"

#include <kestrel/qt/EventSeam.h>

#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace kestrelqt {

namespace {

constexpr int kStripWidth = 22;
constexpr int kGap = 10;
constexpr float kKeyStep = 0.01F;

float Fraction(int at, int from, int length)
{
    return std::clamp(static_cast<float>(at - from) / static_cast<float>(std::max(length - 1, 1)), 0.0F, 1.0F);
}

/// The inverse: the pixel for a fraction of `length` pixels that begin at `from`.
qreal Pixel(float fraction, int from, int length)
{
    return from + static_cast<qreal>(fraction) * (length - 1);
}

/// Draws a ring that is visible on every colour.
void DrawRing(QPainter& painter, const QPointF& center)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::black, 3));
    painter.drawEllipse(center, 6, 6);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawEllipse(center, 6, 6);
}

} // namespace

ColorArea::ColorArea(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    setAccessibleName(tr("Saturation, brightness and hue"));
    setAccessibleDescription(tr("Arrow keys change saturation and brightness, Page Up and Page Down the hue."));
    setToolTip(accessibleDescription());
    setMinimumSize(200, 160);
}

void ColorArea::SetHsv(const Hsv& hsv)
{
    mHsv = hsv;
    update();
}

QRect ColorArea::Square() const
{
    return rect().adjusted(1, 1, -kStripWidth - kGap - 1, -1);
}

QRect ColorArea::Strip() const
{
    return {width() - kStripWidth - 1, 1, kStripWidth, height() - 2};
}

void ColorArea::Pick(Hsv hsv)
{
    mHsv = hsv;
    update();
    if (mPicked) {
        AtSeam([&] { mPicked(hsv); });
    }
}

void ColorArea::PickAt(const QPoint& at)
{
    Hsv hsv = mHsv;
    if (mOnStrip) {
        hsv.hue = Fraction(at.y(), Strip().top(), Strip().height());
    } else {
        hsv.saturation = Fraction(at.x(), Square().left(), Square().width());
        hsv.value = 1.0F - Fraction(at.y(), Square().top(), Square().height());
    }
    Pick(hsv);
}

void ColorArea::mousePressEvent(QMouseEvent* event)
{
    mOnStrip = event->position().x() > Square().right() + kGap / 2.0;
    PickAt(event->position().toPoint());
}

void ColorArea::mouseMoveEvent(QMouseEvent* event)
{
    PickAt(event->position().toPoint());
}

void ColorArea::keyPressEvent(QKeyEvent* event)
{
    Hsv hsv = mHsv;
    switch (event->key()) {
    case Qt::Key_Left:
        hsv.saturation -= kKeyStep;
        break;
    case Qt::Key_Right:
        hsv.saturation += kKeyStep;
        break;
    case Qt::Key_Up:
        hsv.value += kKeyStep;
        break;
    case Qt::Key_Down:
        hsv.value -= kKeyStep;
        break;
    case Qt::Key_PageUp:
        hsv.hue -= kKeyStep;
        break;
    case Qt::Key_PageDown:
        hsv.hue += kKeyStep;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    hsv.hue = std::clamp(hsv.hue, 0.0F, 1.0F);
    hsv.saturation = std::clamp(hsv.saturation, 0.0F, 1.0F);
    hsv.value = std::clamp(hsv.value, 0.0F, 1.0F);
    Pick(hsv);
}

void ColorArea::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRect square = Square();
    QLinearGradient saturation(square.topLeft(), square.topRight());
    saturation.setColorAt(0, Qt::white);
    saturation.setColorAt(1, QColor::fromHsvF(mHsv.hue, 1.0F, 1.0F));
    painter.fillRect(square, saturation);
    QLinearGradient brightness(square.topLeft(), square.bottomLeft());
    brightness.setColorAt(0, QColor(0, 0, 0, 0));
    brightness.setColorAt(1, Qt::black);
    painter.fillRect(square, brightness);

    const QRect strip = Strip();
    QLinearGradient hues(strip.topLeft(), strip.bottomLeft());
    constexpr int kStops = 6; // the six corners of the colour circle
    for (int stop = 0; stop <= kStops; ++stop) {
        const auto at = static_cast<float>(stop) / kStops;
        hues.setColorAt(at, QColor::fromHsvF(at, 1.0F, 1.0F));
    }
    painter.fillRect(strip, hues);

    const qreal hueY = Pixel(mHsv.hue, strip.top(), strip.height());
    painter.setPen(QPen(Qt::black, 3));
    painter.drawRect(QRectF(strip.left() + 1, hueY - 3, strip.width() - 2, 6));
    painter.setPen(QPen(Qt::white, 1.5));
    painter.drawRect(QRectF(strip.left() + 1, hueY - 3, strip.width() - 2, 6));
    painter.setClipRect(square);
    DrawRing(painter, QPointF(Pixel(mHsv.saturation, square.left(), square.width()),
                              Pixel(1.0F - mHsv.value, square.top(), square.height())));
    painter.setClipping(false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(palette().color(hasFocus() ? QPalette::Link : QPalette::Mid));
    painter.drawRect(QRectF(square).adjusted(-0.5, -0.5, -0.5, -0.5));
}

QSize ColorArea::sizeHint() const
{
    return {280, 200};
}

} // namespace kestrelqt
