/// A square in which one picks saturation and brightness, with a strip for the hue.
#pragma once

#include <QColor>
#include <QWidget>
#include <functional>

namespace kestrelqt {

/// Hue, saturation and brightness, 0..1 each, of the colour nearest to what can be shown.
struct Hsv {
    float hue = 0.0F;
    float saturation = 0.0F;
    float value = 0.0F;
};

/// Mouse: press or drag. Keyboard: arrows move saturation and brightness by a hundredth, Page Up and Page
/// Down the hue.
class ColorArea final : public QWidget {
public:
    explicit ColorArea(QWidget* parent = nullptr);

    void SetHsv(const Hsv& hsv);
    /// Called with what a person picked.
    void OnPicked(std::function<void(const Hsv&)> handler) { mPicked = std::move(handler); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    [[nodiscard]] QSize sizeHint() const override;

private:
    [[nodiscard]] QRect Square() const;
    [[nodiscard]] QRect Strip() const;
    void PickAt(const QPoint& at);
    void Pick(Hsv hsv);

    Hsv mHsv;
    bool mOnStrip = false;
    std::function<void(const Hsv&)> mPicked;
};

} // namespace kestrelqt
