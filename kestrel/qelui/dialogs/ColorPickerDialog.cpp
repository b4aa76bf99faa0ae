#include "ColorPickerDialog.h"

#include <kestrel/qelui/dialogs/UI_Dialog.h>
#include <kestrel/qelui/toolkit/Toolkit.h>
#include <kestrel/qelui/toolkit/UserInterface.h>

#include <optional>

namespace qelui::sharedui {

ColorPickerDialog::ColorPickerDialog(const DrawSupplier& supplier, TopLevelWindow* parent, bool offersAlpha)
    : mSupplier(supplier), mParent(parent), mOffersAlpha(offersAlpha)
{
}

bool ColorPickerDialog::RunModal()
{
    ColorPickerRequest request;
    request.color = mColor;
    request.offersAlpha = mOffersAlpha;
    request.drawSupplier = mSupplier;
    request.parent = mParent;
    if (const auto* const dialog = dynamic_cast<UI_Dialog*>(mParent)) {
        request.script = dialog->Script();
    }
    const std::optional<PickerColor> picked = UserInterface::Get().GetToolkit().RunColorPicker(request);
    if (picked) {
        const float alpha = mOffersAlpha ? picked->alpha : mColor.alpha;
        mColor = *picked;
        mColor.alpha = alpha;
    }
    return picked.has_value();
}

} // namespace qelui::sharedui
