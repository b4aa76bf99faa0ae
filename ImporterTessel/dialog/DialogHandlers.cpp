/// What a change of each control does to the settings and to other controls.
#include "ChoiceTables.h"
#include "ImporterTesselPrefsDialogImpl.h"

#include <kestrel/qelmediatypes/Saturating.h>

#include <cmath>
#include <span>

namespace ImporterTessel {

namespace {

using qelmediatypes::SaturatingCast;
using qelmediatypes::SaturatingToFloat;
using qelmediatypes::TickTime;

constexpr auto kSecond = static_cast<double>(qelmediatypes::kTicksPerSecond); // in ticks

double Seconds(TickTime time)
{
    return static_cast<double>(time.Ticks()) / kSecond;
}

} // namespace

void ImporterTesselPrefsDialogImpl::OnPixelFormat()
{
    if (const auto* const choice = ChoiceAt(PixelFormatChoices(), mControls.pixelFormat->GetValue())) {
        mPrefs.mPixelFormat = choice->sdkCode;
    }
    UpdateColorEdits();
}

void ImporterTesselPrefsDialogImpl::OnFrameWidth()
{
    mPrefs.mFrameWidth = SaturatingCast<std::int32_t>(mControls.frameWidth->GetValue());
}

void ImporterTesselPrefsDialogImpl::OnFrameHeight()
{
    mPrefs.mFrameHeight = SaturatingCast<std::int32_t>(mControls.frameHeight->GetValue());
}

void ImporterTesselPrefsDialogImpl::OnPixelAspect()
{
    if (const auto* const choice = ChoiceAt(PixelAspectChoices(), mControls.pixelAspect->GetValue())) {
        mPrefs.mFramePAR = choice->ratio;
    }
}

void ImporterTesselPrefsDialogImpl::OnFrameRate()
{
    if (const auto* const choice = ChoiceAt(FrameRateChoices(), mControls.frameRate->GetValue())) {
        mPrefs.mVideoFrameRate = choice->rate;
        // The frame count stays, the seconds follow.
        OnDurationFrames();
    }
}

void ImporterTesselPrefsDialogImpl::OnDurationFrames()
{
    const auto frames = SaturatingCast<std::int64_t>(mControls.durationFrames->GetValue());
    mPrefs.mVideoDuration = TickTime{}.AddFrames(frames, mPrefs.mVideoFrameRate);
    mControls.durationSeconds->SetValue(Seconds(mPrefs.mVideoDuration));
}

void ImporterTesselPrefsDialogImpl::OnDurationSeconds()
{
    const double seconds = mControls.durationSeconds->GetValue();
    const TickTime entered{seconds == 0.0 ? 0 : SaturatingCast<std::int64_t>(seconds * kSecond)};
    TickTime duration = entered.AlignToFrame(mPrefs.mVideoFrameRate);
    if (duration.Ticks() < 1) {
        duration = duration.AddFrames(1, mPrefs.mVideoFrameRate);
    }
    mControls.durationFrames->SetValue(static_cast<double>(duration.ToFrame64(mPrefs.mVideoFrameRate)));
    mControls.durationSeconds->SetValue(Seconds(duration));
    mPrefs.mVideoDuration = duration;
}

void ImporterTesselPrefsDialogImpl::OnFieldType()
{
    // Intended: the colour buttons' captions follow at the next change of render type or colour slot only.
    mPrefs.mFieldType = mControls.fieldType->GetValue();
    DisableColorButtonsForSwatches();
}

void ImporterTesselPrefsDialogImpl::OnRenderType()
{
    mPrefs.mRenderFormat = mControls.renderType->GetValue();
    UpdateRenderTypePopups();
    DisableColorButtonsForSwatches();
}

void ImporterTesselPrefsDialogImpl::OnChannel(std::size_t column, std::size_t channel)
{
    constexpr std::array<float FloatColor::*, kChannels> kParts{
        &FloatColor::mRedPart, &FloatColor::mGreenPart, &FloatColor::mBluePart, &FloatColor::mAlphaPart};
    if (FloatColor* const color = ShownColor(column)) {
        color->*kParts[channel] = SaturatingToFloat(mControls.channels[column][channel]->GetValue());
    }
}

void ImporterTesselPrefsDialogImpl::OnColorSpace()
{
    const auto spaces = ColorSpaceChoices();
    if (const auto* const space = ChoiceAt(std::span(spaces), mControls.colorSpace->GetValue())) {
        mPrefs.mColorSpace = *space;
    }
}

void ImporterTesselPrefsDialogImpl::OnDrawFrameNumber()
{
    mPrefs.mDrawFrameFieldNumber = mControls.drawFrameNumber->IsChecked();
}

void ImporterTesselPrefsDialogImpl::OnAudioMode()
{
    const bool steady = mControls.steadyTones->GetValue() == 1;
    mPrefs.mToneFormat = steady ? kToneSteady : kToneIdentifyChannels;
    UpdateAudioEnabling();
}

void ImporterTesselPrefsDialogImpl::OnFrequency()
{
    mPrefs.mSteadyToneFrequency = SaturatingToFloat(mControls.frequency->GetValue());
}

void ImporterTesselPrefsDialogImpl::OnAmplitude()
{
    mPrefs.mSteadyToneAmplitude = std::pow(10.0F, SaturatingToFloat(mControls.amplitude->GetValue()) / 20.0F);
}

void ImporterTesselPrefsDialogImpl::OnIdentifierFormat()
{
    const auto found = mIdentifierFormats.find(mControls.identifierFormat->GetValue());
    if (found != mIdentifierFormats.end()) {
        mPrefs.mIdentifierFormat = found->second;
    }
}

void ImporterTesselPrefsDialogImpl::OnOk()
{
    if (!mPrefs.mSavePath.empty()) {
        // Intended: the result is ignored; OK accepts the settings, saved or not.
        WriteDataFile(mPrefs.mSavePath);
    }
    mExchange->SetPrefs(mPrefs);
    GetDialog().Close();
}

void ImporterTesselPrefsDialogImpl::OnCancel()
{
    mExchange->Cancel();
    GetDialog().Close();
}

} // namespace ImporterTessel
