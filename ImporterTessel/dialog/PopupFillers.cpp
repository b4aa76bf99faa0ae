#include "PopupFillers.h"

#include "ChoiceTables.h"

#include <kestrel/brindle/ColorSpaces.h>

#include <cstddef>
#include <span>
#include <string>

namespace ImporterTessel {

namespace {

void AddAll(qelui::UI_Popup& popup, std::span<const std::string_view> labels)
{
    for (const std::string_view label : labels) {
        popup.AddItem(std::string(label));
    }
}

/// Adds a table's labels and chooses the last entry that holds `value`, else the first entry.
template <class Choice, class Value>
void FillFromTable(qelui::UI_Popup& popup, std::span<const Choice> table, std::string_view Choice::*label,
                   Value Choice::*held, const Value& value)
{
    int chosen = 0;
    for (std::size_t index = 0; index < table.size(); ++index) {
        popup.AddItem(std::string(table[index].*label));
        if (table[index].*held == value) {
            chosen = static_cast<int>(index);
        }
    }
    popup.SetValue(chosen);
}

} // namespace

void FillFieldTypePopup(qelui::UI_Popup& popup, std::int32_t fieldType)
{
    AddAll(popup, FieldTypeLabels());
    popup.SetValue(0);
    if (fieldType == kFieldUpperFirst || fieldType == kFieldLowerFirst) {
        popup.SetValue(fieldType);
    }
}

void FillFrameRatePopup(qelui::UI_Popup& popup, qelmediatypes::FrameRate rate)
{
    FillFromTable(popup, FrameRateChoices(), &FrameRateChoice::label, &FrameRateChoice::rate, rate);
}

void FillPixelFormatPopup(qelui::UI_Popup& popup, std::uint32_t pixelFormat)
{
    FillFromTable(popup, PixelFormatChoices(), &PixelFormatChoice::constant, &PixelFormatChoice::sdkCode,
                  pixelFormat);
}

void FillPixelAspectPopup(qelui::UI_Popup& popup, const qelmediatypes::PixelAspectRatio& ratio)
{
    FillFromTable(popup, PixelAspectChoices(), &PixelAspectChoice::constant, &PixelAspectChoice::ratio, ratio);
}

void FillColorSpacePopup(qelui::UI_Popup& popup, const qelmediatypes::color::ColorSpace& space)
{
    // Profile codes, linear light and profile type; the format is the same on both sides, so any will do.
    constexpr std::uint32_t kMatchFlags = BR::kMatchCodes | BR::kMatchLinearized | BR::kMatchProfileType;
    static_assert(kMatchFlags == 11);
    constexpr BR::PixelFormat kAnyFormat = BR::PixelFormat::BGRA_4444_8u;

    int chosen = -1;
    for (const auto& choice : ColorSpaceChoices()) {
        const int index =
            popup.AddItem(BR::ColorSpaceUtils::QELColorSpaceToString(choice, BR::kDescriptiveName));
        if (chosen < 0 && BR::DoColorSpacesMatch(choice, space, kMatchFlags, kAnyFormat, kAnyFormat)) {
            chosen = index;
        }
    }
    popup.SetValue(chosen);
}

void FillRenderTypePopup(qelui::UI_Popup& popup)
{
    AddAll(popup, RenderTypeLabels());
}

void FillColorSlotPopup(qelui::UI_Popup& popup)
{
    AddAll(popup, ColorSlotLabels());
}

IdentifierFormatMap FillIdentifierFormatPopup(qelui::UI_Popup& popup, std::int32_t channelType,
                                              std::int32_t identifierFormat)
{
    IdentifierFormatMap formats;
    popup.RemoveAllItems();
    for (const IdentifierFormatChoice& choice : IdentifierFormatChoices(channelType)) {
        formats[popup.AddItem(std::string(choice.label))] = choice.format;
    }
    popup.SetValue(0);
    for (const auto& [index, format] : formats) {
        if (format == identifierFormat) {
            popup.SetValue(static_cast<int>(index));
        }
    }
    return formats;
}

} // namespace ImporterTessel
