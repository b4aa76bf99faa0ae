/// Pictures of the clip beside its settings.
#pragma once

#include <kestrel/qelui/dialogs/PreviewPicture.h>
#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <QImage>
#include <QThreadPool>
#include <QTimer>
#include <QWidget>
#include <optional>
#include <string>

namespace kestrelqt {

/// Shows the first and the last frame of the dialog's document, side by side where it is wide enough, in their
/// own aspect ratio, transparent parts over a checkerboard. They are rendered a moment after the last change,
/// on a thread of the pane's, and only if the change is one that they show. [ui-thread]
class PreviewPane final : public QWidget {
public:
    explicit PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent = nullptr);
    PreviewPane(const PreviewPane&) = delete;
    PreviewPane& operator=(const PreviewPane&) = delete;
    /// Waits for a rendering that has begun.
    ~PreviewPane() override;

    /// Something changed: refresh soon.
    void RefreshSoon();
    /// Returns when the pictures are those of the settings as they stand; for screenshots.
    void Finish();

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Refresh();
    void RenderIfIdle();
    void Take(const std::optional<qelui::PreviewPictures>& pictures);
    void PaintPicture(QPainter& painter, const QImage& picture, const QString& caption,
                      const QRect& place) const;

    const qelui::UI_Dialog& mDialog;
    QTimer mTimer;
    QThreadPool mThread;                ///< of one thread
    std::optional<std::string> mWanted; ///< the document whose pictures should be seen
    std::optional<std::string> mTaken;  ///< the one whose pictures are seen or being rendered
    std::optional<std::string> mShown;  ///< what of it the pictures show; of the rendering thread alone
    bool mIsRendering = false;
    bool mHasAnswer = false; ///< an answer, pictures or a refusal, has come at least once
    QImage mFirst;
    QImage mLast;
    qint64 mLastFrame = 0;
};

} // namespace kestrelqt
