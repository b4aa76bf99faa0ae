/// A text that keeps both ends when there is too little room.
#pragma once

#include <QLabel>

namespace kestrelqt {

/// Shows its whole text if that fits, else with an ellipsis. The tooltip has the whole text.
class ElidedLabel final : public QLabel {
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void SetText(const QString& text, Qt::TextElideMode mode, const QString& explanation);
    /// The whole text, fitting or not.
    [[nodiscard]] const QString& WholeText() const noexcept { return mText; }

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] QSize minimumSizeHint() const override;

private:
    QString mText;
    Qt::TextElideMode mMode = Qt::ElideRight;
};

} // namespace kestrelqt
