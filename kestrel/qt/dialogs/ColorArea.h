/// A square for choosing saturation and brightness, with a strip for the hue.
#pragma once

#include <QColor>
#include <QWidget>
#include <functional>

namespace kestrelqt {

/// Hue, saturation and brightness, 0..1 each, of the nearest colour that a screen can show.
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
    /// Sets the function that is called with each colour that a person picks.
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
