#include "TesselDocument.h"

#include "ColorSpaceDocument.h"
#include "DocumentFields.h"
#include "SwatchFiles.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace ImporterTessel {

using namespace qelcore::serialization;
using qelmediatypes::FrameRate;
using qelmediatypes::PixelAspectRatio;
using qelmediatypes::TickTime;

namespace {

FloatColor ColorFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "FloatColor");
    FloatColor color;
    reader.Read("mAlphaPart", color.mAlphaPart);
    reader.Read("mRedPart", color.mRedPart);
    reader.Read("mGreenPart", color.mGreenPart);
    reader.Read("mBluePart", color.mBluePart);
    return color;
}

PixelAspectRatio RatioFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "PixelAspectRatio");
    std::uint32_t numerator = 0;
    std::uint32_t denominator = 0;
    reader.Read("numerator", numerator);
    reader.Read("denominator", denominator);
    return {numerator, denominator};
}

TickTime TimeFromValue(const Value& value, std::string_view key)
{
    std::int64_t ticks = 0;
    ObjectReader(value, key, "TickTime").Read("ticks", ticks);
    return TickTime(ticks);
}

FrameRate RateFromValue(const Value& value, std::string_view key)
{
    std::int64_t ticksPerFrame = 0;
    ObjectReader(value, key, "FrameRate").Read("ticksperframe", ticksPerFrame);
    // Intended: a rate of zero is no rate, and is the unusable one from here on, in files written later, too.
    return {ticksPerFrame == 0 ? FrameRate::kUnusableTicks : ticksPerFrame};
}

Value ValueFromColor(const FloatColor& color)
{
    Object object;
    AddToObject(object, "mAlphaPart", NumberValue(color.mAlphaPart));
    AddToObject(object, "mRedPart", NumberValue(color.mRedPart));
    AddToObject(object, "mGreenPart", NumberValue(color.mGreenPart));
    AddToObject(object, "mBluePart", NumberValue(color.mBluePart));
    return Value(std::move(object));
}

Value ValueFromRatio(const PixelAspectRatio& ratio)
{
    Object object;
    AddToObject(object, "numerator", IntegerValue(ratio.GetNumerator()));
    AddToObject(object, "denominator", IntegerValue(ratio.GetDenominator()));
    return Value(std::move(object));
}

Value ValueFromTicks(std::string key, std::int64_t ticks)
{
    Object object;
    AddToObject(object, std::move(key), SignedValue(ticks));
    return Value(std::move(object));
}

void ReadRequiredKeys(const ObjectReader& reader, TesselInfo& info)
{
    reader.Read("mPixelFormat", info.mPixelFormat);
    reader.Read("mFrameWidth", info.mFrameWidth);
    reader.Read("mFrameHeight", info.mFrameHeight);
    reader.Read("mFramePAR", info.mFramePAR, RatioFromValue);
    reader.Read("mFieldType", info.mFieldType);
    reader.Read("mRenderFormat", info.mRenderFormat);
    reader.Read("mUpperFieldColor", info.mUpperFieldColor, ColorFromValue);
    reader.Read("mLowerFieldColor", info.mLowerFieldColor, ColorFromValue);
    reader.Read("mTopGradiantColorStart", info.mTopGradiantColorStart, ColorFromValue);
    reader.Read("mTopGradiantColorEnd", info.mTopGradiantColorEnd, ColorFromValue);
    reader.Read("mBottomGradiantColorStart", info.mBottomGradiantColorStart, ColorFromValue);
    reader.Read("mBottomGradiantColorEnd", info.mBottomGradiantColorEnd, ColorFromValue);
    reader.Read("mVideoDuration", info.mVideoDuration, TimeFromValue);
    reader.Read("mVideoFrameRate", info.mVideoFrameRate, RateFromValue);
}

void ReadOptionalKeys(const ObjectReader& reader, TesselInfo& info)
{
    reader.ReadIfPresent("mColorSpace", info.mColorSpace, ColorSpaceFromValue);
    info.mVersion = 0; // Intended: documents older than the key are version 0, whatever a new record has.
    reader.ReadIfPresent("mVersion", info.mVersion);
    reader.ReadIfPresent("mSwatchCoordinatesFilePath", info.mSwatchCoordinatesFilePath);
    reader.ReadIfPresent("mSwatchColorsFilePath", info.mSwatchColorsFilePath);
    reader.ReadIfPresent("mSwatchCoordinates", info.mSwatchCoordinates, SwatchCoordinatesFromValue);
    reader.ReadIfPresent("mSwatchColors", info.mSwatchColors, SwatchColorsFromValue);
    reader.ReadIfPresent("mDrawFrameFieldNumber", info.mDrawFrameFieldNumber);
    reader.ReadIfPresent("mSampleRate", info.mSampleRate);
    reader.ReadIfPresent("mKsAudioChannelType", info.mKsAudioChannelType);
    reader.ReadIfPresent("mNumChannels", info.mNumChannels);
    reader.ReadIfPresent("mToneFormat", info.mToneFormat);
    reader.ReadIfPresent("mSteadyToneFrequency", info.mSteadyToneFrequency);
    reader.ReadIfPresent("mSteadyToneAmplitude", info.mSteadyToneAmplitude);
    reader.ReadIfPresent("mIdentifierFormat", info.mIdentifierFormat);
}

} // namespace

Value DocumentFromTessel(const TesselInfo& info)
{
    Object root;
    AddToObject(root, "mPixelFormat", IntegerValue(info.mPixelFormat));
    AddToObject(root, "mFrameWidth", IntegerValue(info.mFrameWidth));
    AddToObject(root, "mFrameHeight", IntegerValue(info.mFrameHeight));
    AddToObject(root, "mFramePAR", ValueFromRatio(info.mFramePAR));
    AddToObject(root, "mFieldType", IntegerValue(info.mFieldType));
    AddToObject(root, "mRenderFormat", IntegerValue(info.mRenderFormat));
    AddToObject(root, "mUpperFieldColor", ValueFromColor(info.mUpperFieldColor));
    AddToObject(root, "mLowerFieldColor", ValueFromColor(info.mLowerFieldColor));
    AddToObject(root, "mTopGradiantColorStart", ValueFromColor(info.mTopGradiantColorStart));
    AddToObject(root, "mTopGradiantColorEnd", ValueFromColor(info.mTopGradiantColorEnd));
    AddToObject(root, "mBottomGradiantColorStart", ValueFromColor(info.mBottomGradiantColorStart));
    AddToObject(root, "mBottomGradiantColorEnd", ValueFromColor(info.mBottomGradiantColorEnd));
    AddToObject(root, "mVideoDuration", ValueFromTicks("ticks", info.mVideoDuration.Ticks()));
    AddToObject(root, "mVideoFrameRate", ValueFromTicks("ticksperframe", info.mVideoFrameRate.ticksPerFrame));
    AddToObject(root, "mColorSpace", ValueFromColorSpace(info.mColorSpace));
    AddToObject(root, "mVersion", IntegerValue(info.mVersion));
    AddToObject(root, "mSwatchCoordinatesFilePath", TextValue(info.mSwatchCoordinatesFilePath));
    AddToObject(root, "mSwatchColorsFilePath", TextValue(info.mSwatchColorsFilePath));
    AddToObject(root, "mSwatchCoordinates", ValueFromSwatchCoordinates(info.mSwatchCoordinates));
    AddToObject(root, "mSwatchColors", ValueFromSwatchColors(info.mSwatchColors));
    AddToObject(root, "mDrawFrameFieldNumber", BooleanValue(info.mDrawFrameFieldNumber));
    AddToObject(root, "mSampleRate", NumberValue(info.mSampleRate));
    AddToObject(root, "mKsAudioChannelType", IntegerValue(info.mKsAudioChannelType));
    AddToObject(root, "mNumChannels", IntegerValue(info.mNumChannels));
    AddToObject(root, "mToneFormat", IntegerValue(info.mToneFormat));
    AddToObject(root, "mSteadyToneFrequency", NumberValue(info.mSteadyToneFrequency));
    AddToObject(root, "mSteadyToneAmplitude", NumberValue(info.mSteadyToneAmplitude));
    AddToObject(root, "mIdentifierFormat", IntegerValue(info.mIdentifierFormat));
    return Value(std::move(root));
}

TesselInfo TesselFromDocument(const Value& document)
{
    TesselInfo info;
    if (!document.IsObject()) {
        return info;
    }
    const ObjectReader reader(document, /*path=*/"", "TesselInfo");
    ReadRequiredKeys(reader, info);
    ReadOptionalKeys(reader, info);
    return info;
}

} // namespace ImporterTessel
