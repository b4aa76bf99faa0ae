#include "PreviewPane.h"

#include <kestrel/qelui/toolkit/UserInterface.h>
#include <kestrel/qt/style/Theme.h>

#include <QPainter>
#include <cstring>

namespace kestrelqt {

namespace {

constexpr int kQuietMilliseconds = 120; // long enough not to render at each keystroke
constexpr int kChecker = 8;             // logical pixels
constexpr int kWidth = 320;             // logical pixels
constexpr int kTallest = 480;           // a portrait picture is narrower instead
constexpr int kCaptionGap = 8;

QImage ToImage(const qelui::PreviewPicture& picture)
{
    QImage image(picture.width, picture.height, QImage::Format_ARGB32);
    for (int row = 0; row < image.height(); ++row) {
        std::memcpy(image.scanLine(row),
                    picture.pixels.data() +
                        static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width),
                    static_cast<std::size_t>(picture.width) * sizeof(std::uint32_t));
    }
    return image;
}

/// No picture if the document cannot be made, for instance for lack of memory: the dialog can be used without
/// one, and an exception must not reach Qt's event loop.
QImage PictureOf(const qelui::UI_Dialog& dialog) noexcept
{
    try {
        const auto& render = qelui::UserInterface::Get().GetPreviewRenderer();
        return render ? ToImage(render(dialog.GetDocument()())) : QImage();
    } catch (...) {
        return {};
    }
}

} // namespace

PreviewPane::PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent) : QWidget(parent), mDialog(dialog)
{
    setAccessibleName(tr("Preview of frame 0"));
    setToolTip(tr("Frame 0 of the clip as the settings stand now."));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
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
    mPicture = PictureOf(mDialog);
    update();
}

void PreviewPane::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QColor ink = ColorsOf(AppliedTheme()).dimText;
    if (mPicture.isNull()) {
        painter.setPen(ink);
        painter.drawText(rect(), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                         tr("No picture: these settings cannot be rendered."));
        return;
    }
    const int caption = fontMetrics().height() + kCaptionGap;
    const QSize room(width() - 2, qMin(height() - caption, kTallest) - 2);
    const QSize fitted = mPicture.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QRect target(QPoint((width() - fitted.width()) / 2, 1), fitted);
    painter.setPen(ink);
    painter.drawText(QRect(0, target.bottom() + kCaptionGap, width(), fontMetrics().height()), Qt::AlignHCenter,
                     tr("Frame 0"));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(target.adjusted(-1, -1, 0, 0));
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
    return {kWidth, 240};
}

} // namespace kestrelqt
