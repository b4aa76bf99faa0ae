#include "PictureView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::view {
namespace {

constexpr int kTitleHeight = 22; // screen units, for the title above the picture

/// Some rows of an image, without copying a pixel.
QImage RowsOfImage(const QImage& image, const Rows& rows)
{
    const qsizetype rowBytes = image.bytesPerLine();
    return {image.constBits() + rows.first * rowBytes, image.width(), rows.count, rows.step * rowBytes,
            image.format()};
}

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent)
{
    setMouseTracking(true);
    setMinimumSize(160, 120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Picture");
}

void PictureView::Show(PaneContent content)
{
    mContent = std::move(content);
    setAccessibleDescription(mContent.title);
    update();
}

void PictureView::SetRows(FieldView view, FirstField firstField, bool isSecondField)
{
    const bool changes = view != mFieldView || firstField != mFirstField || isSecondField != mIsSecondField;
    mFieldView = view;
    mFirstField = firstField;
    mIsSecondField = isSecondField;
    if (changes) {
        update();
    }
}

void PictureView::SetZoom(const Zoom& zoom)
{
    mZoom = zoom;
    update();
}

void PictureView::SetMoving(bool isMoving)
{
    if (mIsMoving != isMoving) {
        mIsMoving = isMoving;
        update();
    }
}

void PictureView::SetActive(bool isActive)
{
    mIsActive = isActive;
    update();
}

void PictureView::SetWipe(double place)
{
    mWipe = std::clamp(place, 0.0, 1.0);
    update();
}

Area PictureView::WindowArea() const
{
    const double scale = devicePixelRatioF();
    const double top = mContent.title.isEmpty() ? 0.0 : kTitleHeight;
    return {0, std::round(top * scale), std::max(1.0, std::floor(width() * scale)),
            std::max(1.0, std::floor((height() - top) * scale))};
}

Area PictureView::Place() const
{
    return PlaceOf(mContent.size, WindowArea(), mZoom);
}

int PictureView::ScreenRows() const
{
    return static_cast<int>(Place().height);
}

void PictureView::Draw(QPainter& painter, const QImage& image, const Area& place) const
{
    const Rows rows = RowsOf(mFieldView, mFirstField, mIsSecondField, image.height());
    const bool isReduced = place.width < image.width() || place.height < image.height();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, isReduced && !mIsMoving);
    painter.drawImage(QRectF(place.left, place.top, place.width, place.height), RowsOfImage(image, rows));
}

void PictureView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x30, 0x30, 0x30));
    if (!mContent.title.isEmpty()) {
        const QRect strip(0, 0, width(), kTitleHeight);
        painter.fillRect(strip, mIsActive ? QColor(0x1F, 0x4A, 0x78) : QColor(0x22, 0x22, 0x22));
        painter.setPen(QColor(0xE0, 0xE0, 0xE0));
        painter.drawText(strip.adjusted(8, 0, -8, 0), Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(mContent.title, Qt::ElideMiddle, strip.width() - 16));
    }
    if (mContent.image.isNull()) {
        painter.setPen(QColor(0xE0, 0xE0, 0xE0));
        painter.drawText(rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                         mContent.trouble);
        return;
    }
    // Device pixels, so that a code pixel is a whole number of them on every screen.
    const double scale = 1.0 / devicePixelRatioF();
    painter.scale(scale, scale);
    const Area window = WindowArea();
    painter.setClipRect(QRectF(window.left, window.top, window.width, window.height));
    const Area place = Place();
    Draw(painter, mContent.image, place);
    if (!mContent.wiped.isNull()) {
        const double line = place.left + std::round(place.width * mWipe);
        painter.save();
        painter.setClipRect(QRectF(line, window.top, window.left + window.width - line, window.height));
        Draw(painter, mContent.wiped, place);
        painter.restore();
        painter.fillRect(QRectF(line, place.top, 1, place.height), QColor(0xFF, 0xFF, 0xFF));
    }
    if (!mContent.overlay.isNull()) {
        Draw(painter, mContent.overlay, place);
    }
}

void PictureView::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = event->position() * devicePixelRatioF();
    if ((event->buttons() & Qt::LeftButton) != 0U) {
        if (!mContent.wiped.isNull()) {
            const Area place = Place();
            SetWipe((at.x() - place.left) / place.width);
            if (onWiped) {
                onWiped(mWipe);
            }
        } else if (mZoom.pixelScale > 0) {
            mZoom.panX = mZoomAtDrag.panX + at.x() - mDragFrom.x();
            mZoom.panY = mZoomAtDrag.panY + at.y() - mDragFrom.y();
            update();
            if (onPanned) {
                onPanned(mZoom);
            }
        }
    }
    if (onHover && !mContent.image.isNull()) {
        onHover(PixelAt(mContent.size, Place(), at.x(), at.y()));
    }
}

void PictureView::mousePressEvent(QMouseEvent* event)
{
    mDragFrom = event->position() * devicePixelRatioF();
    mZoomAtDrag = mZoom;
    if (onPressed) {
        onPressed();
    }
}

void PictureView::wheelEvent(QWheelEvent* event)
{
    const int turns = event->angleDelta().y();
    if (onWheel && turns != 0) {
        onWheel(turns > 0 ? 1 : -1);
    }
    event->accept();
}

void PictureView::leaveEvent(QEvent* /*event*/)
{
    if (onHover) {
        onHover(std::nullopt);
    }
}

} // namespace tessel::view
