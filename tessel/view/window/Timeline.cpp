#include "Timeline.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tessel::view {
namespace {

constexpr double kSideMargin = 8; // screen units on both sides

} // namespace

Timeline::Timeline(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    setFocusPolicy(Qt::NoFocus);
    setFixedHeight(26);
    setAccessibleName("Timeline");
    // `SetFrame` is silent, so that only assistive tools and the mouse get here.
    QObject::connect(this, &QSlider::valueChanged, this, [this](int value) {
        if (onMoved) {
            onMoved(value);
        }
    });
}

void Timeline::SetFrameCount(std::int64_t count)
{
    mCount = std::max<std::int64_t>(count, 1);
    const QSignalBlocker quiet(this);
    setRange(0, static_cast<int>(std::min<std::int64_t>(mCount - 1, std::numeric_limits<int>::max())));
    update();
}

void Timeline::SetFrame(std::int64_t frame)
{
    mFrame = frame;
    const QSignalBlocker quiet(this);
    setValue(static_cast<int>(std::min<std::int64_t>(frame, std::numeric_limits<int>::max())));
    update();
}

void Timeline::SetMarks(std::vector<TimelineMark> marks)
{
    mMarks = std::move(marks);
    update();
}

double Timeline::PlaceOf(std::int64_t frame) const
{
    const double share = mCount > 1 ? static_cast<double>(frame) / static_cast<double>(mCount - 1) : 0.0;
    return kSideMargin + share * (width() - 2 * kSideMargin);
}

std::int64_t Timeline::FrameAt(double x) const
{
    const double share = std::clamp((x - kSideMargin) / (width() - 2 * kSideMargin), 0.0, 1.0);
    return static_cast<std::int64_t>(std::lround(share * static_cast<double>(mCount - 1)));
}

void Timeline::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const double middle = height() / 2.0;
    painter.fillRect(QRectF(kSideMargin, middle - 2, width() - 2 * kSideMargin, 4),
                     palette().color(QPalette::Mid));
    for (const TimelineMark& mark : mMarks) {
        const double left = PlaceOf(mark.first);
        const double right = std::max(PlaceOf(mark.last), left + 3);
        painter.fillRect(QRectF(left - 1, middle - 7, right - left + 2, 14), QColor(0xE0, 0x50, 0x40));
    }
    painter.fillRect(QRectF(PlaceOf(mFrame) - 1.5, 3, 3, height() - 6), palette().color(QPalette::Text));
}

void Timeline::mousePressEvent(QMouseEvent* event)
{
    if (onMoved) {
        onMoved(FrameAt(event->position().x()));
    }
}

void Timeline::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) != 0U && onMoved) {
        onMoved(FrameAt(event->position().x()));
    }
}

bool Timeline::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        QString text;
        for (const TimelineMark& mark : mMarks) {
            const double x = help->pos().x();
            if (x >= PlaceOf(mark.first) - 4 && x <= PlaceOf(mark.last) + 4) {
                text += (text.isEmpty() ? "" : "\n") + mark.text;
            }
        }
        QToolTip::showText(help->globalPos(), text, this);
        return true;
    }
    return QSlider::event(event);
}

} // namespace tessel::view
