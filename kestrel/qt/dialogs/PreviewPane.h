/// A picture of the clip beside its settings.
#pragma once

#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <QImage>
#include <QTimer>
#include <QWidget>

namespace kestrelqt {

/// Renders the dialog's document a moment after the last change, and shows the picture in its own aspect
/// ratio, transparent parts over a checkerboard.
class PreviewPane final : public QWidget {
public:
    explicit PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent = nullptr);

    /// Something changed: refresh soon.
    void RefreshSoon();
    /// Refreshes now if a refresh is due; for screenshots.
    void RefreshIfDue();

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Refresh();

    const qelui::UI_Dialog& mDialog;
    QTimer mTimer;
    QImage mPicture;
};

} // namespace kestrelqt
