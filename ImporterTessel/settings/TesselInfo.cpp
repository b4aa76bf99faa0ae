#include "TesselInfo.h"

#include <kestrel/brindle/ColorSpaces.h>

#include <utility>

namespace ImporterTessel {

TesselInfo::TesselInfo() : mClipName(u"Default Frame"), mColorSpace(BR::ColorSpaces::Rec709()) {}

TesselInfo::~TesselInfo() = default;
TesselInfo::TesselInfo(const TesselInfo&) = default;
TesselInfo& TesselInfo::operator=(const TesselInfo&) = default;
TesselInfo::TesselInfo(TesselInfo&&) noexcept = default;

TesselInfo& TesselInfo::operator=(TesselInfo&& source) noexcept
{
    if (this == &source) {
        return *this;
    }
    mVersion = source.mVersion;
    mPixelFormat = source.mPixelFormat;
    mFrameWidth = source.mFrameWidth;
    mFrameHeight = source.mFrameHeight;
    mFramePAR = source.mFramePAR;
    mFieldType = source.mFieldType;
    mRenderFormat = source.mRenderFormat;
    mUpperFieldColor = source.mUpperFieldColor;
    mLowerFieldColor = source.mLowerFieldColor;
    mTopGradiantColorStart = source.mTopGradiantColorStart;
    mBottomGradiantColorStart = source.mBottomGradiantColorStart;
    mTopGradiantColorEnd = source.mTopGradiantColorEnd;
    mBottomGradiantColorEnd = source.mBottomGradiantColorEnd;
    // Intended: the duration is the one scalar that leaves its source; the frame rate stays.
    mVideoDuration = std::exchange(source.mVideoDuration, qelmediatypes::TickTime{});
    mVideoFrameRate = source.mVideoFrameRate;
    mSavePath = std::move(source.mSavePath);
    mClipName = std::move(source.mClipName);
    mDrawFrameFieldNumber = source.mDrawFrameFieldNumber;
    mSwatchCoordinatesFilePath = std::move(source.mSwatchCoordinatesFilePath);
    mSwatchColorsFilePath = std::move(source.mSwatchColorsFilePath);
    mSwatchCoordinates = std::move(source.mSwatchCoordinates);
    mSwatchColors = std::move(source.mSwatchColors);
    mColorSpace = std::move(source.mColorSpace);
    mSampleRate = source.mSampleRate;
    mKsAudioChannelType = source.mKsAudioChannelType;
    mNumChannels = source.mNumChannels;
    mToneFormat = source.mToneFormat;
    mSteadyToneFrequency = source.mSteadyToneFrequency;
    mSteadyToneAmplitude = source.mSteadyToneAmplitude;
    mIdentifierFormat = source.mIdentifierFormat;
    return *this;
}

} // namespace ImporterTessel
