/// A line of text that changes often.
#pragma once

#include <QString>
#include <QWidget>

namespace tessel::view {

/// Cut with an ellipsis where it has no room. Its size does not follow the text, so that a new text costs no
/// layout of the window. Assistive tools hear it as "Name: text". [ui-thread]
class Readout final : public QWidget {
public:
    /// @param name  what the text is about
    /// @param leastWidth  in screen units
    Readout(QString name, int leastWidth, QWidget* parent);

    void Show(const QString& text);
    [[nodiscard]] const QString& Text() const noexcept { return mText; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString mName;
    QString mText;
    int mLeastWidth;
};

} // namespace tessel::view
