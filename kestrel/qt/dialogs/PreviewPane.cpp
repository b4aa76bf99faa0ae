#include "PreviewPane.h"

#include <kestrel/qelui/toolkit/UserInterface.h>
#include <kestrel/qt/style/Theme.h>

#include <QCoreApplication>
#include <QPainter>
#include <cstring>
#include <utility>

namespace kestrelqt {

namespace {

constexpr int kQuietMilliseconds = 120; // long enough not to render at each keystroke
constexpr int kChecker = 8;             // logical pixels
constexpr int kWidth = 440;             // logical pixels
constexpr int kPictureGap = 12;         // between the pictures
constexpr int kNarrowestBeside = 130;   // of each picture, else they stand below one another
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

/// The settings as they stand. Empty if the document cannot be made, for instance for lack of memory: the
/// dialog can be used without pictures, and an exception must not reach Qt's event loop.
std::string DocumentOf(const qelui::UI_Dialog& dialog) noexcept
{
    try {
        return dialog.GetDocument()();
    } catch (...) {
        return {};
    }
}

/// Nothing where `document` shows what `shown` shows, else its pictures, and `shown` is what they show.
std::optional<qelui::PreviewPictures> PicturesOf(const qelui::PreviewRenderer& renderer,
                                                 const std::string& document,
                                                 std::optional<std::string>& shown) noexcept
{
    try {
        const std::string reduced = document.empty() ? std::string() : renderer.reduce(document);
        if (shown == reduced) {
            return std::nullopt;
        }
        shown = reduced;
        return reduced.empty() ? qelui::PreviewPictures{} : renderer.render(reduced);
    } catch (...) {
        shown.reset(); // the next document may have pictures again
        return qelui::PreviewPictures{};
    }
}

} // namespace

PreviewPane::PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent) : QWidget(parent), mDialog(dialog)
{
    setAccessibleName(tr("Preview of the first and the last frame"));
    setToolTip(tr("The first and the last frame of the clip as the settings stand now."));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    mThread.setMaxThreadCount(1);
    mTimer.setSingleShot(true);
    mTimer.setInterval(kQuietMilliseconds);
    connect(&mTimer, &QTimer::timeout, this, [this] { Refresh(); });
    Refresh();
}

PreviewPane::~PreviewPane()
{
    mThread.waitForDone();
}

void PreviewPane::RefreshSoon()
{
    mTimer.start();
}

void PreviewPane::Finish()
{
    if (mTimer.isActive()) {
        mTimer.stop();
        Refresh();
    }
    while (mIsRendering) {
        mThread.waitForDone();
        QCoreApplication::sendPostedEvents(this, QEvent::MetaCall); // takes the pictures
    }
}

void PreviewPane::Refresh()
{
    mWanted = DocumentOf(mDialog);
    RenderIfIdle();
}

void PreviewPane::RenderIfIdle()
{
    if (mIsRendering || mWanted == mTaken) {
        return;
    }
    mIsRendering = true;
    mTaken = mWanted;
    mThread.start([this, document = mWanted, renderer = qelui::UserInterface::Get().GetPreviewRenderer()] {
        const auto pictures = PicturesOf(renderer, document.value_or(std::string()), mShown);
        QMetaObject::invokeMethod(
            this, [this, pictures] { Take(pictures); }, Qt::QueuedConnection);
    });
}

void PreviewPane::Take(const std::optional<qelui::PreviewPictures>& pictures)
{
    mIsRendering = false;
    if (pictures) {
        mHasAnswer = true;
        mFirst = ToImage(pictures->first);
        mLast = ToImage(pictures->last);
        mLastFrame = pictures->lastFrame;
        update();
    }
    RenderIfIdle(); // what changed meanwhile
}

void PreviewPane::PaintPicture(QPainter& painter, const QImage& picture, const QString& caption,
                               const QRect& place) const
{
    const int captionHeight = fontMetrics().height() + kCaptionGap;
    const QSize room(place.width() - 2, place.height() - captionHeight - 2);
    const QSize fitted = picture.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    const QRect target(QPoint(place.left() + (place.width() - fitted.width()) / 2, place.top() + 1), fitted);
    painter.setPen(ColorsOf(AppliedTheme()).dimText);
    painter.drawText(QRect(place.left(), target.bottom() + kCaptionGap, place.width(), fontMetrics().height()),
                     Qt::AlignHCenter, caption);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(target.adjusted(-1, -1, 0, 0));
    painter.save();
    painter.setClipRect(target);
    for (int y = 0; y < fitted.height(); y += kChecker) {
        for (int x = 0; x < fitted.width(); x += kChecker) {
            const bool light = (x / kChecker + y / kChecker) % 2 == 0;
            painter.fillRect(target.x() + x, target.y() + y, kChecker, kChecker,
                             light ? QColor(0x80, 0x80, 0x80) : QColor(0x60, 0x60, 0x60));
        }
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, picture);
    painter.restore();
}

void PreviewPane::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!mHasAnswer) {
        return;
    }
    if (mFirst.isNull()) {
        painter.setPen(ColorsOf(AppliedTheme()).dimText);
        painter.drawText(rect(), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
                         tr("No picture: these settings cannot be rendered."));
        return;
    }
    const bool areSideBySide = width() >= 2 * kNarrowestBeside + kPictureGap;
    const int pictureWidth = areSideBySide ? (width() - kPictureGap) / 2 : width();
    const int wanted =
        mFirst.height() * pictureWidth / qMax(mFirst.width(), 1) + fontMetrics().height() + kCaptionGap;
    const int pictureHeight =
        qMin(wanted + 2, qMin(kTallest, areSideBySide ? height() : (height() - kPictureGap) / 2));
    const QRect first(0, 0, pictureWidth, pictureHeight);
    PaintPicture(painter, mFirst, tr("Frame 0"), first);
    if (!mLast.isNull()) {
        const QPoint step =
            areSideBySide ? QPoint(pictureWidth + kPictureGap, 0) : QPoint(0, pictureHeight + kPictureGap);
        PaintPicture(painter, mLast, tr("Frame %1").arg(mLastFrame), first.translated(step));
    }
}

QSize PreviewPane::sizeHint() const
{
    return {kWidth, 240};
}

} // namespace kestrelqt
