#include "PreviewPane.h"

#include <QPainter>
#include <cstring>

namespace kestrelqt {

namespace {

constexpr int kQuietMilliseconds = 120; // long enough not to render at each keystroke
constexpr int kChecker = 8;             // logical pixels
const QColor kSurround(0x11, 0x11, 0x11);

} // namespace

PreviewPane::PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent) : QWidget(parent), mDialog(dialog)
{
    setAccessibleName(tr("Preview of frame 0"));
    setToolTip(tr("Frame 0 of the clip as the settings stand now."));
    setMinimumWidth(280);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    mTimer.setSingleShot(true);
    mTimer.setInterval(kQuietMilliseconds);
    connect(&mTimer, &QTimer::timeout, this, [this] { Refresh(); });
    Refresh();
}

void PreviewPane::RefreshSoon()
{
    mTimer.start();
}

void PreviewPane::RefreshIfDue()
{
    if (mTimer.isActive()) {
        mTimer.stop();
        Refresh();
    }
}

void PreviewPane::Refresh()
{
    const qelui::PreviewPicture picture = mDialog.GetPreview()();
    mPicture = QImage(picture.width, picture.height, QImage::Format_ARGB32);
    for (int row = 0; row < mPicture.height(); ++row) {
        std::memcpy(mPicture.scanLine(row),
                    picture.pixels.data() +
                        static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width),
                    static_cast<std::size_t>(picture.width) * sizeof(std::uint32_t));
    }
    update();
}

void PreviewPane::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), kSurround);
    if (mPicture.isNull()) {
        painter.setPen(QColor(0xB4, 0xB4, 0xB4));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("No picture: these settings cannot be rendered."));
        return;
    }
    const QSize fitted = mPicture.size().scaled(size(), Qt::KeepAspectRatio);
    const QRect target(QPoint((width() - fitted.width()) / 2, 0), fitted);
    painter.setClipRect(target);
    for (int y = 0; y < fitted.height(); y += kChecker) {
        for (int x = 0; x < fitted.width(); x += kChecker) {
            const bool light = (x / kChecker + y / kChecker) % 2 == 0;
            painter.fillRect(target.x() + x, target.y() + y, kChecker, kChecker,
                             light ? QColor(0x80, 0x80, 0x80) : QColor(0x60, 0x60, 0x60));
        }
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, mPicture);
}

QSize PreviewPane::sizeHint() const
{
    return {320, 240};
}

} // namespace kestrelqt
