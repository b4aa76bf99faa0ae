#include "ScopesPanel.h"

#include <tessel/scopes/Colorimetry.h>

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace tessel::view {
namespace {

const QColor kGround(0x14, 0x14, 0x14);
const QColor kScale(0x4A, 0x4A, 0x4A);
const QColor kScaleText(0xB8, 0xB8, 0xB8);
const QColor kWhite(0xD0, 0xF0, 0xD0);

QString Text(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A grid as a picture, top row highest value. Brightness grows with the logarithm of counts, so that a single
/// pixel is in sight beside large areas of one colour.
/// @param size  of the picture; cells of the grid that fall into one of its pixels are added up
QImage TraceOf(const scopes::CountGrid& grid, QColor color, QSizeF size)
{
    const int rows = std::clamp(static_cast<int>(size.height()), 1, grid.Rows());
    const int columns = std::clamp(static_cast<int>(size.width()), 1, grid.Columns());
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns));
    for (int row = 0; row < grid.Rows(); ++row) {
        std::uint32_t* const sums =
            counts.data() + static_cast<std::ptrdiff_t>(row * rows / grid.Rows()) * columns;
        for (int column = 0; column < grid.Columns(); ++column) {
            sums[column * columns / grid.Columns()] += grid.At(column, row);
        }
    }
    const std::uint32_t most = *std::max_element(counts.begin(), counts.end());
    const double highest = std::log1p(static_cast<double>(std::max<std::uint32_t>(most, 8)));
    const auto shade = [&](std::uint32_t count) -> QRgb {
        constexpr double kFaintest = 0.35;
        const double light = kFaintest + (1 - kFaintest) * std::log1p(static_cast<double>(count)) / highest;
        return qPremultiply(qRgba(color.red(), color.green(), color.blue(), static_cast<int>(255 * light)));
    };
    std::array<QRgb, 64> known{}; // most counts are small, and logarithms take time
    for (std::uint32_t count = 1; count < known.size(); ++count) {
        known[count] = shade(count);
    }
    QImage image(columns, rows, QImage::Format_ARGB32_Premultiplied);
    const std::uint32_t* count = counts.data();
    for (int row = rows - 1; row >= 0; --row) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < columns; ++column, ++count) {
            line[column] = *count < known.size() ? known[*count] : shade(*count);
        }
    }
    return image;
}

double PlaceOfLevel(const QRectF& area, double level)
{
    const double share = (level - static_cast<double>(scopes::kLowestLevel)) /
                         static_cast<double>(scopes::kHighestLevel - scopes::kLowestLevel);
    return area.bottom() - share * area.height();
}

} // namespace

ScopesPanel::ScopesPanel(QWidget* parent) : QWidget(parent)
{
    setMinimumSize(240, 320);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName("Scopes");
    setAccessibleDescription("Waveform, R'G'B' parade, vectorscope and histogram of the frame");
}

void ScopesPanel::Show(std::shared_ptr<const ScopeCounts> counts)
{
    if (counts != mCounts) {
        mCounts = std::move(counts);
        update();
    }
}

void ScopesPanel::DrawLevels(QPainter& painter, const QRectF& area) const
{
    for (const int percent : {0, 25, 50, 75, 100}) {
        const double y = std::round(PlaceOfLevel(area, percent / 100.0)) + 0.5;
        painter.setPen(QPen(kScale, percent % 100 == 0 ? 1.5 : 0.7));
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        const bool hasRoom = area.height() / 5 > painter.fontMetrics().height();
        if (percent % 50 != 0 && !hasRoom) {
            continue;
        }
        painter.setPen(kScaleText);
        painter.drawText(QRectF(area.left() - 34, y - 8, 30, 16), Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(percent));
    }
}

void ScopesPanel::DrawWaveform(QPainter& painter, const QRectF& area) const
{
    DrawLevels(painter, area);
    if (mCounts) {
        painter.drawImage(area, TraceOf(mCounts->waveform, kWhite, area.size()));
    }
}

void ScopesPanel::DrawParade(QPainter& painter, const QRectF& area) const
{
    DrawLevels(painter, area);
    if (!mCounts) {
        return;
    }
    const double width = area.width() / 3;
    const std::array<std::pair<const scopes::CountGrid*, QColor>, 3> parts{
        {{&mCounts->red, QColor(0xFF, 0x60, 0x60)},
         {&mCounts->green, QColor(0x60, 0xE0, 0x60)},
         {&mCounts->blue, QColor(0x70, 0x90, 0xFF)}}};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        painter.drawImage(
            QRectF(area.left() + static_cast<double>(i) * width + 1, area.top(), width - 2, area.height()),
            TraceOf(*parts[i].first, parts[i].second, {width, area.height()}));
    }
}

void ScopesPanel::DrawVectors(QPainter& painter, const QRectF& area) const
{
    const double side = std::min(area.width(), area.height());
    const QRectF square(area.center().x() - side / 2, area.center().y() - side / 2, side, side);
    const auto at = [&square](double cb, double cr) {
        constexpr auto kReach = static_cast<double>(scopes::kVectorReach);
        return QPointF(square.center().x() + cb / kReach * square.width() / 2,
                       square.center().y() - cr / kReach * square.height() / 2);
    };
    painter.setPen(QPen(kScale, 1));
    painter.drawLine(at(-0.58, 0), at(0.58, 0));
    painter.drawLine(at(0, -0.58), at(0, 0.58));
    painter.drawEllipse(square.adjusted(side * 0.01, side * 0.01, -side * 0.01, -side * 0.01));
    if (mCounts) {
        // Two pixels wide, because a plain colour is one dot.
        painter.drawImage(square, TraceOf(mCounts->vectors, kWhite, square.size() / 2));
    }
    const exporting::Matrix matrix = mCounts ? mCounts->matrix : exporting::Matrix::Bt709;
    for (const double amplitude : {0.75, 1.0}) {
        for (const scopes::BarTarget& target : scopes::BarTargets(matrix, amplitude)) {
            const QPointF middle = at(target.cb, target.cr);
            const double half = side * 0.018;
            painter.setPen(QPen(amplitude < 1 ? QColor(0xF0, 0xC0, 0x60) : QColor(0x90, 0x90, 0x90), 1));
            painter.drawRect(QRectF(middle.x() - half, middle.y() - half, 2 * half, 2 * half));
            if (amplitude < 1) {
                painter.drawText(QRectF(middle.x() + half + 2, middle.y() - 8, 24, 16), Qt::AlignVCenter,
                                 Text(target.name));
            }
        }
    }
}

void ScopesPanel::DrawHistogram(QPainter& painter, const QRectF& area) const
{
    const auto placeOf = [&area](double level) {
        const double share = (level - static_cast<double>(scopes::kLowestLevel)) /
                             static_cast<double>(scopes::kHighestLevel - scopes::kLowestLevel);
        return area.left() + share * area.width();
    };
    for (const int percent : {0, 25, 50, 75, 100}) {
        const double x = placeOf(percent / 100.0);
        painter.setPen(QPen(kScale, percent % 100 == 0 ? 1.5 : 0.7));
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    }
    if (!mCounts) {
        return;
    }
    const std::array<QColor, 4> colors{QColor(0xE0, 0xE0, 0xE0), QColor(0xFF, 0x60, 0x60),
                                       QColor(0x60, 0xE0, 0x60), QColor(0x70, 0x90, 0xFF)};
    for (const std::size_t i : {1U, 2U, 3U, 0U}) { // Y' on top
        const std::vector<std::uint32_t>& bins = mCounts->histograms[i];
        const std::uint32_t highest = std::max<std::uint32_t>(*std::max_element(bins.begin(), bins.end()), 1);
        const double full = std::log1p(static_cast<double>(highest));
        QPainterPath path(QPointF(area.left(), area.bottom()));
        for (std::size_t bin = 0; bin < bins.size(); ++bin) {
            const double x =
                area.left() + static_cast<double>(bin) / static_cast<double>(bins.size()) * area.width();
            const double share = std::log1p(static_cast<double>(bins[bin])) / full;
            path.lineTo(x, area.bottom() - share * area.height());
        }
        path.lineTo(area.right(), area.bottom());
        painter.setPen(QPen(colors[i], 1));
        painter.drawPath(path);
    }
}

void ScopesPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), kGround);
    const int titleHeight = fontMetrics().height() + 4;
    // Waveform and parade are wide, the vectorscope is square.
    constexpr std::array<double, 4> kShares{0.22, 0.22, 0.38, 0.18};
    QString matrix = mCounts ? ", " + Text(scopes::NameOf(mCounts->matrix)) : QString();
    const std::array<QString, 4> titles{"Waveform Y' (%)", "Parade R' G' B' (%)",
                                        "Vectorscope" + matrix + ", targets 75 % and 100 %",
                                        "Histogram Y' R' G' B' (logarithmic)"};
    double top = 0;
    for (std::size_t i = 0; i < titles.size(); ++i) {
        const double space = kShares[i] * height();
        painter.setRenderHint(QPainter::Antialiasing, i == 2);
        painter.setPen(kScaleText);
        painter.drawText(QRectF(8, top + 2, width() - 16, titleHeight), Qt::AlignVCenter, titles[i]);
        const bool hasNumbers = i < 2;
        const QRectF area(hasNumbers ? 40 : 8, top + titleHeight + 4, width() - (hasNumbers ? 48 : 16),
                          space - titleHeight - 10);
        switch (i) {
        case 0:
            DrawWaveform(painter, area);
            break;
        case 1:
            DrawParade(painter, area);
            break;
        case 2:
            DrawVectors(painter, area);
            break;
        default:
            DrawHistogram(painter, area);
        }
        top += space;
    }
}

} // namespace tessel::view
