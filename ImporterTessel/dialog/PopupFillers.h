/// Fills each of the dialog's popups and chooses the item that shows the settings.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/qelui/controls/UI_Popup.h>

#include <cstdint>
#include <map>

namespace ImporterTessel {

/// Item index of the identifier-format popup to `IdentifierFormat`.
using IdentifierFormatMap = std::map<std::int64_t, std::int32_t>;

/// Each appends its items to `popup`, which comes empty, and then chooses. [ui-thread] @{

/// Item 0, or the field type's own item for 1 and 2.
void FillFieldTypePopup(qelui::UI_Popup& popup, std::int32_t fieldType);
/// The last item with that rate, pixel format or ratio. If no item has it, item 0; the settings keep their
/// value until a person picks an item. @{
void FillFrameRatePopup(qelui::UI_Popup& popup, qelmediatypes::FrameRate rate);
void FillPixelFormatPopup(qelui::UI_Popup& popup, std::uint32_t pixelFormat);
void FillPixelAspectPopup(qelui::UI_Popup& popup, const qelmediatypes::PixelAspectRatio& ratio);
/// @}
/// The first item that matches. Without a match no item is chosen.
void FillColorSpacePopup(qelui::UI_Popup& popup, const qelmediatypes::color::ColorSpace& space);
/// Items only, without a choice. @{
void FillRenderTypePopup(qelui::UI_Popup& popup);
void FillColorSlotPopup(qelui::UI_Popup& popup);
/// @}
/// Empties the popup first; the item of `identifierFormat`, else item 0. @return what each item stands for.
[[nodiscard]] IdentifierFormatMap FillIdentifierFormatPopup(qelui::UI_Popup& popup, std::int32_t channelType,
                                                            std::int32_t identifierFormat);
/// @}

} // namespace ImporterTessel
