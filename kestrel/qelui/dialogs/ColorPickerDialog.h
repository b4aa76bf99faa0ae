/// The host's colour picker. Threads: [ui-thread].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelui/DrawSupplier.h>
#include <kestrel/qelui/TopLevelWindow.h>

namespace qelui::sharedui {

/// Channels as they are, nominally 0..1 and never limited to it.
struct PickerColor {
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    float alpha = 1.0F;
    bool operator==(const PickerColor&) const = default;
};

/// Life: built, given a colour, run once, read.
class KESTRELUI_API ColorPickerDialog {
public:
    /// @param offersAlpha  Whether a person can edit alpha, too; without it alpha stays as it was set.
    ColorPickerDialog(const DrawSupplier& supplier, TopLevelWindow* parent, bool offersAlpha);

    void SetColor(const PickerColor& color) noexcept { mColor = color; }
    /// The colour set, or what the person made of it; channels that the person left alone keep every bit.
    [[nodiscard]] const PickerColor& GetColor() const noexcept { return mColor; }

    /// @return whether the person accepted; if not, the colour is the one that was set.
    /// @throws NoToolkitError
    bool RunModal();

private:
    DrawSupplier mSupplier;
    TopLevelWindow* mParent; // borrowed
    bool mOffersAlpha;
    PickerColor mColor;
};

} // namespace qelui::sharedui
