/// Shows the settings in the dialog's controls, and enables the controls that depend on others.
#include "ChoiceTables.h"
#include "ImporterTesselPrefsDialogImpl.h"

#include <kestrel/qelcore/text/Unicode.h>

#include <algorithm>
#include <cmath>

namespace ImporterTessel {

namespace {

/// A column's captions.
struct Captions {
    std::string_view first;
    std::string_view second;
};

Captions CaptionsFor(std::int32_t renderFormat, int slot, std::int32_t fieldType)
{
    if (renderFormat == kRenderColorSwatches) {
        return {"[unused]", "[unused]"};
    }
    if (slot == 0) {
        return fieldType == kFieldProgressive ? Captions{"Frame Color", "[unused]"}
                                              : Captions{"Upper Field Color", "Lower Field Color"};
    }
    return slot == 1 || slot == 2 ? Captions{"Top Color", "Bottom Color"} : Captions{};
}

} // namespace

// The order matters: later steps read what earlier ones chose.
void ImporterTesselPrefsDialogImpl::InitializeControls()
{
    FillFieldTypePopup(*mControls.fieldType, mPrefs.mFieldType);
    DisableColorButtonsForSwatches();
    FillFrameRatePopup(*mControls.frameRate, mPrefs.mVideoFrameRate);
    mControls.durationSeconds->SetValue(static_cast<double>(mPrefs.mVideoDuration.Ticks()) /
                                        static_cast<double>(qelmediatypes::kTicksPerSecond));
    // Intended: a stored duration is rounded to whole frames, at least one, as soon as the dialog opens.
    OnDurationSeconds();
    mControls.frameWidth->SetValue(mPrefs.mFrameWidth);
    mControls.frameHeight->SetValue(mPrefs.mFrameHeight);
    FillPixelFormatPopup(*mControls.pixelFormat, mPrefs.mPixelFormat);
    FillPixelAspectPopup(*mControls.pixelAspect, mPrefs.mFramePAR);
    InitializeSaveGroup();
    mControls.swatchCoordinatesPath->SetValue(qelcore::text::ToUTF8(mPrefs.mSwatchCoordinatesFilePath));
    mControls.swatchColorsPath->SetValue(qelcore::text::ToUTF8(mPrefs.mSwatchColorsFilePath));
    FillColorSpacePopup(*mControls.colorSpace, mPrefs.mColorSpace);
    UpdateRenderTypePopups();
    UpdateColorButtonLabels();
    mControls.drawFrameNumber->SetChecked(mPrefs.mDrawFrameFieldNumber);
    UpdateColorEdits();
    InitializeAudio();
    mInitialized = true;
}

void ImporterTesselPrefsDialogImpl::InitializeSaveGroup()
{
    if (mPrefs.mSavePath.empty()) {
        mControls.saveFile->SetDisabled(true);
        return;
    }
    mControls.savePath->SetValue(qelcore::text::ToUTF8(mPrefs.mSavePath));
    mControls.useAsCustomImporter->SetChecked(true);
    mControls.useAsCustomImporter->SetDisabled(true);
}

void ImporterTesselPrefsDialogImpl::InitializeAudio()
{
    constexpr float kLeastAmplitude = 1e-15F; // -300 dB, the least that the control takes
    mControls.frequency->SetValue(mPrefs.mSteadyToneFrequency);
    mControls.amplitude->SetValue(20.0F * std::log10(std::fmax(mPrefs.mSteadyToneAmplitude, kLeastAmplitude)));
    mControls.steadyTones->SetValue(mPrefs.mToneFormat == kToneSteady ? 1 : 0);
    mControls.identifyChannels->SetValue(mPrefs.mToneFormat == kToneIdentifyChannels ? 1 : 0);
    mIdentifierFormats = FillIdentifierFormatPopup(*mControls.identifierFormat, mPrefs.mKsAudioChannelType,
                                                   mPrefs.mIdentifierFormat);
    // Intended: a format that the popup does not offer is replaced by the chosen item's.
    OnIdentifierFormat();
    mControls.identifierFormat->SetDisabled(false);
    UpdateAudioEnabling();
}

void ImporterTesselPrefsDialogImpl::DisableColorButtonsForSwatches()
{
    for (qelui::UI_Button* const button : mControls.colorButtons) {
        button->SetDisabled(mPrefs.mRenderFormat == kRenderColorSwatches);
    }
}

void ImporterTesselPrefsDialogImpl::UpdateRenderTypePopups()
{
    if (mControls.renderType->Items().empty()) {
        FillRenderTypePopup(*mControls.renderType);
    }
    mControls.renderType->SetValue(mPrefs.mRenderFormat);

    qelui::UI_Popup& slots = *mControls.colorSlot;
    if (slots.Items().empty()) {
        FillColorSlotPopup(slots);
    }
    for (int slot = 0; slot < static_cast<int>(slots.Items().size()); ++slot) {
        slots.SetItemEnabled(slot, true);
    }
    switch (mPrefs.mRenderFormat) {
    case kRenderFieldColors:
        slots.SetItemEnabled(1, false);
        slots.SetItemEnabled(2, false);
        slots.SetValue(0);
        break;
    case kRenderHorizontalGradient:
        slots.SetItemEnabled(0, false);
        // Intended: the start colours are chosen and then the end colours, which stay.
        slots.SetValue(1);
        slots.SetValue(2);
        break;
    case kRenderColorSwatches:
        slots.SetItemEnabled(0, false);
        slots.SetItemEnabled(1, false);
        slots.SetItemEnabled(2, false);
        break;
    default:
        break;
    }
    UpdateColorButtonLabels();
}

void ImporterTesselPrefsDialogImpl::UpdateColorButtonLabels()
{
    const Captions captions =
        CaptionsFor(mPrefs.mRenderFormat, mControls.colorSlot->GetValue(), mPrefs.mFieldType);
    mControls.colorButtons[0]->SetLabel(std::string(captions.first));
    mControls.colorButtons[1]->SetLabel(std::string(captions.second));
    UpdateColorEdits();
}

void ImporterTesselPrefsDialogImpl::UpdateColorEdits()
{
    for (std::size_t column = 0; column < kColumns; ++column) {
        const FloatColor* const shown = ShownColor(column);
        const FloatColor color = shown == nullptr ? FloatColor{} : *shown;
        auto& edits = mControls.channels[column];
        edits[0]->SetValue(color.mRedPart);
        edits[1]->SetValue(color.mGreenPart);
        edits[2]->SetValue(color.mBluePart);
        edits[3]->SetValue(color.mAlphaPart);
    }
}

void ImporterTesselPrefsDialogImpl::UpdateAudioEnabling()
{
    const bool identify = mPrefs.mToneFormat == kToneIdentifyChannels;
    mControls.frequency->SetDisabled(identify);
    mControls.amplitude->SetDisabled(identify);
    mControls.identifierFormat->SetDisabled(!identify);
}

FloatColor* ImporterTesselPrefsDialogImpl::ShownColor(std::size_t column)
{
    const bool isFirst = column == 0;
    switch (mControls.colorSlot->GetValue()) {
    case 0:
        return isFirst ? &mPrefs.mUpperFieldColor : &mPrefs.mLowerFieldColor;
    case 1:
        return isFirst ? &mPrefs.mTopGradiantColorStart : &mPrefs.mBottomGradiantColorStart;
    case 2:
        return isFirst ? &mPrefs.mTopGradiantColorEnd : &mPrefs.mBottomGradiantColorEnd;
    default:
        return nullptr;
    }
}

} // namespace ImporterTessel
