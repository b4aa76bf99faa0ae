/// A combo box that is not changed by accident.
#pragma once

#include <kestrel/qelui/controls/UI_Popup.h>

#include <QComboBox>

namespace kestrelqt {

/// Asks for the width of its longest item and shrinks to its model's minimum, or to a few letters; what is then
/// too long is shown with an ellipsis in its middle. Return opens the list. The wheel changes nothing while the
/// list is closed. Typing finds items that contain the letters, best at their beginning. A click on a disabled
/// item does nothing, whereas Qt would choose the current item again.
class ChoiceBox final : public QComboBox {
public:
    ChoiceBox(const qelui::UI_Popup& popup, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    void showPopup() override;
    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] int WidestItem() const;
    [[nodiscard]] QSize SizeFor(int textWidth) const;

    QSize mLeast;
};

} // namespace kestrelqt
