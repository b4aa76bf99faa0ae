#include "MetersPanel.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::view {
namespace {

constexpr double kLowestDb = -60;

double ShareOf(double db)
{
    return std::clamp((db - kLowestDb) / -kLowestDb, 0.0, 1.0);
}

} // namespace

QString LevelText(double db)
{
    return std::isfinite(db) && db > -200 ? QString::number(db, 'f', 1) : QStringLiteral("-\u221E");
}

MetersPanel::MetersPanel(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(120, 120);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Meters");
}

void MetersPanel::Show(std::vector<std::string> names, std::vector<scopes::MeterReading> readings,
                       const QString& segment)
{
    mNames = std::move(names);
    mReadings = std::move(readings);
    mSegment = segment;
    QStringList spoken;
    for (std::size_t i = 0; i < std::min(mNames.size(), mReadings.size()); ++i) {
        spoken << QString::fromStdString(mNames[i]) + ' ' + LevelText(mReadings[i].peakDb) + " dBFS";
    }
    if (!mSegment.isEmpty()) {
        spoken << "ident: " + mSegment;
    }
    setAccessibleDescription(spoken.isEmpty() ? "The clip has no sound" : spoken.join("; "));
    update();
}

void MetersPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x14, 0x14, 0x14));
    const QColor ink(0xB8, 0xB8, 0xB8);
    painter.setPen(ink);
    const int line = fontMetrics().height();
    const QRectF title(8, 2, width() - 16, line + 4);
    const std::size_t count = std::min({mNames.size(), mReadings.size(), kMostChannels});
    if (count == 0) {
        painter.drawText(title, Qt::AlignVCenter, "Meters: the clip has no sound");
        return;
    }
    const QString more =
        mNames.size() > count ? QString(", %1 of %2 channels").arg(count).arg(mNames.size()) : "";
    painter.drawText(title, Qt::AlignVCenter,
                     "Sample peak (dBFS)" + more + (mSegment.isEmpty() ? "" : ", ident: " + mSegment));
    const QRectF area(36, line + 10, width() - 44, height() - 3 * line - 20);
    double lastLabel = -line;
    for (const int db : {0, -6, -12, -18, -24, -36, -48, -60}) {
        const double y = area.bottom() - ShareOf(db) * area.height();
        painter.setPen(QColor(0x4A, 0x4A, 0x4A));
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        if (y - lastLabel >= line) { // no label over another one
            lastLabel = y;
            painter.setPen(ink);
            painter.drawText(QRectF(0, y - 8, 32, 16), Qt::AlignRight | Qt::AlignVCenter, QString::number(db));
        }
    }
    const double step = area.width() / static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) {
        const scopes::MeterReading& reading = mReadings[i];
        const double left = area.left() + static_cast<double>(i) * step + step * 0.2;
        const double top = area.bottom() - ShareOf(reading.peakDb) * area.height();
        painter.fillRect(QRectF(left, top, step * 0.6, area.bottom() - top),
                         reading.peakDb > -9 ? QColor(0xE0, 0xA0, 0x40) : QColor(0x50, 0xB0, 0x60));
        if (reading.heldDb > kLowestDb) {
            const double held = area.bottom() - ShareOf(reading.heldDb) * area.height();
            painter.fillRect(QRectF(left, held - 1, step * 0.6, 2),
                             reading.hasClipped ? QColor(0xFF, 0x40, 0x40) : QColor(0xF0, 0xF0, 0xF0));
        }
        painter.setPen(ink);
        const QRectF below(area.left() + static_cast<double>(i) * step, area.bottom() + 4, step, line);
        painter.drawText(below, Qt::AlignCenter, QString::fromStdString(mNames[i]));
        painter.drawText(below.translated(0, line), Qt::AlignCenter, LevelText(reading.peakDb));
    }
}

} // namespace tessel::view
