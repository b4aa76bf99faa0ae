#include "RandomTesselInfo.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using ImporterTessel::Coordinates;
using ImporterTessel::FloatColor;

class Draw {
public:
    explicit Draw(std::mt19937_64& random) : mRandom(random) {}

    std::int32_t Int32() { return static_cast<std::int32_t>(mRandom()); }
    std::uint32_t UInt32() { return static_cast<std::uint32_t>(mRandom()); }
    std::int64_t Int64() { return static_cast<std::int64_t>(mRandom()); }
    bool Bool() { return (mRandom() & 1) != 0; }

    float Float()
    {
        for (;;) {
            std::uint32_t bits = UInt32();
            switch (mRandom() % 8) {
            case 0: // a denormal
                bits &= 0x807F'FFFF;
                break;
            case 1: // an infinity
                bits = (bits & 0x8000'0000) | 0x7F80'0000;
                break;
            case 2: // a zero
                bits &= 0x8000'0000;
                break;
            default:
                break;
            }
            const auto value = std::bit_cast<float>(bits);
            if (!std::isnan(value)) {
                return value;
            }
        }
    }

    std::size_t Length() { return mRandom() % 6; }

    std::u16string Text()
    {
        std::u16string text;
        for (std::size_t count = Length(); count > 0; --count) {
            const auto unit = static_cast<char16_t>(mRandom());
            const bool isSurrogate = unit >= 0xD800 && unit <= 0xDFFF;
            if (isSurrogate) {
                text += static_cast<char16_t>(0xD800 | (unit & 0x3FF));
                text += static_cast<char16_t>(0xDC00 | (mRandom() & 0x3FF));
            } else {
                text += Bool() ? unit : static_cast<char16_t>(unit & 0x7F);
            }
        }
        return text;
    }

    FloatColor Color() { return {Float(), Float(), Float(), Float()}; }

    std::vector<float> Floats()
    {
        std::vector<float> floats(Length());
        for (float& value : floats) {
            value = Float();
        }
        return floats;
    }

    Coordinates Positions()
    {
        Coordinates positions;
        for (auto* list : {&positions.xCoordinates, &positions.yCoordinates}) {
            list->resize(Length());
            for (std::int32_t& value : *list) {
                value = Int32();
            }
        }
        return positions;
    }

    qelmediatypes::color::ColorSpace ColorSpace()
    {
        qelmediatypes::color::ColorSpace space;
        space.baseColorProfile.name = Bool() ? "House" : "\xE2\x82\xAC \"\\";
        space.baseColorProfile.data.resize(Length());
        for (std::uint8_t& byte : space.baseColorProfile.data) {
            byte = static_cast<std::uint8_t>(mRandom());
        }
        space.baseProfileType = Int32();
        space.colorSpaceLinearized = Bool();
        space.colorSpaceMetadata = {Int32(), Float(), Bool()};
        return space;
    }

private:
    std::mt19937_64& mRandom;
};

} // namespace

ImporterTessel::TesselInfo RandomTesselInfo(std::mt19937_64& random)
{
    Draw draw(random);
    ImporterTessel::TesselInfo info;
    info.mVersion = draw.Int32();
    info.mPixelFormat = draw.UInt32();
    info.mFrameWidth = draw.Int32();
    info.mFrameHeight = draw.Int32();
    info.mFramePAR = {draw.UInt32(), draw.UInt32()};
    info.mFieldType = draw.Int32();
    info.mRenderFormat = draw.Int32();
    info.mUpperFieldColor = draw.Color();
    info.mLowerFieldColor = draw.Color();
    info.mTopGradiantColorStart = draw.Color();
    info.mBottomGradiantColorStart = draw.Color();
    info.mTopGradiantColorEnd = draw.Color();
    info.mBottomGradiantColorEnd = draw.Color();
    info.mVideoDuration = qelmediatypes::TickTime(draw.Int64() | 1);
    info.mVideoFrameRate = {draw.Int64() | 1};
    info.mSavePath = draw.Text();
    info.mClipName = draw.Text();
    info.mDrawFrameFieldNumber = draw.Bool();
    info.mSwatchCoordinatesFilePath = draw.Text();
    info.mSwatchColorsFilePath = draw.Text();
    info.mSwatchCoordinates = {draw.Positions(), draw.Positions(), draw.Positions()};
    info.mSwatchColors = {draw.Floats(), draw.Floats(), draw.Floats()};
    info.mColorSpace = draw.ColorSpace();
    info.mSampleRate = draw.Float();
    info.mKsAudioChannelType = draw.Int32();
    info.mNumChannels = draw.Int32();
    info.mToneFormat = draw.Int32();
    info.mSteadyToneFrequency = draw.Float();
    info.mSteadyToneAmplitude = draw.Float();
    info.mIdentifierFormat = draw.Int32();
    return info;
}
