/// A picture of what the settings make, beside the settings.
#pragma once

#include <kestrel/qelui/dialogs/UI_Dialog.h>

#include <QImage>
#include <QTimer>
#include <QWidget>

namespace kestrelqt {

/// Renders the dialog's document a moment after the last change, and shows it at its own aspect;
/// transparent parts over a checkerboard.
class PreviewPane final : public QWidget {
public:
    explicit PreviewPane(const qelui::UI_Dialog& dialog, QWidget* parent = nullptr);

    /// Something changed: refresh soon.
    void RefreshSoon();
    /// Refreshes now where a refresh is due, for a screenshot.
    void RefreshIfDue();

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QSize sizeHint() const override;

private:
    void Refresh();

    const qelui::UI_Dialog& mDialog;
    QTimer mTimer;
    QImage mPicture;
};

} // namespace kestrelqt
