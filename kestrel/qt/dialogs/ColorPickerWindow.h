/// A colour picker for colours that are floats.
#pragma once

#include <kestrel/qelui/dialogs/ColorPickerDialog.h>

#include <QDialog>
#include <array>

class QLineEdit;
class QPushButton;

namespace kestrelqt {

class ColorArea;

/// Four fields hold the channels, with all their digits and any value, also above 1 and below 0. An area
/// picks colours that a screen can show, and two patches compare the new colour with the old one. Channels
/// that a person does not change keep every bit. [ui-thread]
class ColorPickerWindow final : public QDialog {
public:
    enum class Alpha { Offered, Kept };
    /// @param alpha  Whether there is a field for alpha; without one alpha stays as it is.
    ColorPickerWindow(const qelui::sharedui::PickerColor& color, Alpha alpha, QWidget* parent);
    ColorPickerWindow(const ColorPickerWindow&) = delete;
    ColorPickerWindow& operator=(const ColorPickerWindow&) = delete;
    ~ColorPickerWindow() override;

    [[nodiscard]] const qelui::sharedui::PickerColor& Color() const noexcept { return mColor; }

    /// Red, green, blue, alpha; the last one is hidden where alpha is kept. @{
    static constexpr std::size_t kChannels = 4;
    [[nodiscard]] QLineEdit& Field(std::size_t channel) const { return *mFields[channel]; }
    /// @}
    [[nodiscard]] QPushButton& OkButton() const { return *mOk; }
    [[nodiscard]] QPushButton& CancelButton() const { return *mCancel; }

private:
    void TakeField(std::size_t channel);
    void ShowColor();
    void ShowFields();
    void ShowArea();

    qelui::sharedui::PickerColor mColor;
    qelui::sharedui::PickerColor mOldColor;
    qelui::sharedui::PickerColor mBeforeEdit; ///< the colour before the current edit of a field
    std::array<QLineEdit*, kChannels> mFields{};
    ColorArea* mArea = nullptr;
    QWidget* mPatches = nullptr;
    QPushButton* mOk = nullptr;
    QPushButton* mCancel = nullptr;
};

/// The shortest text that reads back as the same float.
[[nodiscard]] QString ShortestText(float value);

} // namespace kestrelqt
