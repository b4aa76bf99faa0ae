/// A text that is shortened where it does not fit, and can be copied.
#pragma once

#include <QLabel>

namespace kestrelqt {

/// Shows its whole text if that fits. Else a path keeps its file name and loses folders, and another text loses
/// its middle. The tooltip has the whole text. A text that is not empty takes the focus, so that Ctrl+C, or the
/// menu of the right mouse button, copies it.
class ElidedLabel final : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void SetText(const QString& text, const QString& explanation);
    /// The whole text, fitting or not.
    [[nodiscard]] const QString& WholeText() const noexcept { return mText; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    void Copy() const;

    QString mText;
};

/// The text within `width` pixels.
[[nodiscard]] QString ElidedPath(const QString& text, const QFontMetrics& metrics, int width);

} // namespace kestrelqt
