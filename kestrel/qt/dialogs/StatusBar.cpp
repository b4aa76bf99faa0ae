#include "StatusBar.h"

#include <kestrel/qt/style/Theme.h>

#include <QAccessible>
#include <QPainter>
#include <QTextLayout>

namespace kestrelqt {

namespace {

constexpr int kLines = 2;

/// `text` cut into at most `kLines` lines, the last one with an ellipsis where there is more.
QStringList LinesOf(const QString& text, const QFont& font, int width)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // long paths have no word ends
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList lines;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() == kLines - 1) {
            const QString rest = text.mid(line.textStart());
            lines << QFontMetrics(font).elidedText(rest, Qt::ElideMiddle, width);
            break;
        }
        lines << text.mid(line.textStart(), line.textLength());
    }
    layout.endLayout();
    return lines;
}

} // namespace

StatusBar::StatusBar(QWidget* parent) : QLabel(parent)
{
    setObjectName(QStringLiteral("statusLine"));
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void StatusBar::Follow(const qelui::StatusLine& status)
{
    const QString report = QString::fromStdString(status.Report());
    const bool isNewReport = !report.isEmpty() && report != mReport;
    mReport = report;
    mExplanation = QString::fromStdString(status.Explanation());
    const bool hasBoth = !mReport.isEmpty() && !mExplanation.isEmpty();
    setText(hasBoth ? mReport + QLatin1Char('\n') + mExplanation : Shown()); // for assistive tools
    setToolTip(text());
    if (isNewReport) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    update();
}

QSize StatusBar::sizeHint() const
{
    constexpr int kUsualWidth = 400;
    return {kUsualWidth, kLines * fontMetrics().lineSpacing()};
}

QSize StatusBar::minimumSizeHint() const
{
    constexpr int kLeastWidth = 120;
    return {kLeastWidth, sizeHint().height()};
}

void StatusBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const ThemeColors& colors = ColorsOf(AppliedTheme());
    const int step = fontMetrics().lineSpacing();
    const auto draw = [&](int line, const QString& text, const QColor& color) {
        painter.setPen(color);
        painter.drawText(QRect(0, line * step, width(), step), Qt::AlignLeft | Qt::AlignVCenter, text);
    };
    if (!mReport.isEmpty() && !mExplanation.isEmpty()) {
        QStringList lines = LinesOf(mReport, font(), width());
        draw(0, lines.value(0), colors.accentInk);
        if (lines.size() > 1) {
            draw(1, lines[1], colors.accentInk); // what happened matters more than the explanation
        } else {
            draw(1, fontMetrics().elidedText(mExplanation, Qt::ElideRight, width()), colors.dimText);
        }
        return;
    }
    const QStringList lines = LinesOf(Shown(), font(), width());
    for (int line = 0; line < lines.size(); ++line) {
        draw(line, lines[line], mReport.isEmpty() ? colors.dimText : colors.accentInk);
    }
}

} // namespace kestrelqt
