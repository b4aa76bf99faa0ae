#include "Cases.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

namespace golden {

namespace {

struct Settings {
    std::uint32_t pixelFormat = 0x61726762;
    int width = 160, height = 106;
    int fieldType = 0, renderFormat = 1;
    bool number = true;
    int channels = 2, channelType = 2, toneFormat = 0, identifierFormat = 0;
};

void AppendNumber(std::string& text, std::string_view key, std::int64_t value)
{
    text.append("\"").append(key).append("\":").append(std::to_string(value)).append(",");
}

void AppendColor(std::string& text, std::string_view key, std::string_view alpha, std::string_view red,
                 std::string_view green, std::string_view blue)
{
    text.append("\"").append(key).append("\":{\"mAlphaPart\":").append(alpha);
    text.append(",\"mRedPart\":").append(red);
    text.append(",\"mGreenPart\":").append(green);
    text.append(",\"mBluePart\":").append(blue).append("},");
}

/// 30 frames of 30 a second, in colours of which no two components are alike.
std::string Document(const Settings& settings)
{
    const std::int64_t ticksPerFrame = qelmediatypes::kTicksPerSecond / 30;
    std::string text = "{";
    AppendNumber(text, "mVersion", 1);
    AppendNumber(text, "mPixelFormat", settings.pixelFormat);
    AppendNumber(text, "mFrameWidth", settings.width);
    AppendNumber(text, "mFrameHeight", settings.height);
    text += R"("mFramePAR":{"numerator":1,"denominator":1},)";
    AppendNumber(text, "mFieldType", settings.fieldType);
    AppendNumber(text, "mRenderFormat", settings.renderFormat);
    AppendColor(text, "mUpperFieldColor", "1", "1", "0.5", "0.25");
    AppendColor(text, "mLowerFieldColor", "0.5", "0.125", "0.375", "0.875");
    AppendColor(text, "mTopGradiantColorStart", "1", "1", "0.0625", "0.25");
    AppendColor(text, "mTopGradiantColorEnd", "0.25", "0.5", "0.625", "0.75");
    AppendColor(text, "mBottomGradiantColorStart", "0.75", "0", "1", "0.125");
    AppendColor(text, "mBottomGradiantColorEnd", "1", "1.25", "0.5", "-0.25");
    text += R"("mVideoDuration":{"ticks":)";
    text += std::to_string(30 * ticksPerFrame);
    text += R"(},"mVideoFrameRate":{"ticksperframe":)";
    text += std::to_string(ticksPerFrame);
    text += "},";
    AppendNumber(text, "mNumChannels", settings.channels);
    AppendNumber(text, "mKsAudioChannelType", settings.channelType);
    AppendNumber(text, "mToneFormat", settings.toneFormat);
    AppendNumber(text, "mIdentifierFormat", settings.identifierFormat);
    text += settings.number ? R"("mDrawFrameFieldNumber":true})" : R"("mDrawFrameFieldNumber":false})";
    return text;
}

struct Size {
    int width, height;
};

struct Look {
    const char* name;
    int renderFormat, fieldType;
    bool number;
};

bool IsPictured(BR::PixelFormat format, const Look& look, Size size)
{
    using BR::PixelFormat;
    if (size.width % 2 != 0) {
        return false;
    }
    const bool fields = look.fieldType != 0;
    switch (format) {
    case PixelFormat::BGRA_4444_8u:
        return true; // in every look
    case PixelFormat::BGRA_4444_32f:
        return look.number || fields;
    case PixelFormat::VUYA_4444_8u_709:
    case PixelFormat::UYVY_422_8u_601:
    case PixelFormat::V210_422_10u_709:
    case PixelFormat::BGRA_4444_32f_Linear:
    case PixelFormat::PALDV25:
        return look.number;
    default:
        return false;
    }
}

} // namespace

std::vector<FrameCase> FrameCases(const std::filesystem::path& samples)
{
    // 160×106 is even, 4:2:2 and v210 groups end inside the 67 columns of the other.
    constexpr Size kSizes[]{{160, 106}, {67, 33}};
    constexpr Look kLooks[]{{"field", 0, 0, false},
                            {"fields", 0, 2, false},
                            {"gradient", 1, 0, false},
                            {"gradient-number", 1, 0, true}};
    std::vector<FrameCase> cases;
    for (const BR::PixelFormatInfo& format : BR::AllPixelFormats()) {
        const std::string formatName(format.constant.substr(format.constant.find('_') + 1));
        for (const Size size : kSizes) {
            for (const Look& look : kLooks) {
                cases.push_back(
                    {.name = formatName + "-" + look.name + "-" + std::to_string(size.width) + "x" +
                             std::to_string(size.height),
                     .document = Document({.pixelFormat = format.sdkCode,
                                           .width = size.width,
                                           .height = size.height,
                                           .fieldType = look.fieldType,
                                           .renderFormat = look.renderFormat,
                                           .number = look.number}),
                     .frame = 17,
                     .keep = IsPictured(format.format, look, size) ? Keep::HashAndPicture : Keep::Hash});
            }
        }
    }
    std::ifstream chart(samples / "swatch-chart.tessel", std::ios::binary);
    if (!chart) {
        throw std::runtime_error("cannot read " + (samples / "swatch-chart.tessel").string());
    }
    cases.push_back({.name = "swatch-chart",
                     .document = {std::istreambuf_iterator<char>(chart), {}},
                     .frame = 4,
                     .keep = Keep::HashAndPicture});
    return cases;
}

std::vector<SoundCase> SoundCases()
{
    const auto sound = [](const char* name, int toneFormat, int identifierFormat, int channels, int blocks) {
        return SoundCase{.name = name,
                         .document = Document({.channels = channels,
                                               .channelType = channels == 6 ? 3 : 2,
                                               .toneFormat = toneFormat,
                                               .identifierFormat = identifierFormat}),
                         .channels = channels,
                         .blocks = blocks};
    };
    // Long enough for every part of each pattern.
    return {sound("sound-steady", 0, 0, 2, 10), sound("sound-ebu-stereo-1000", 1, 0, 2, 60),
            sound("sound-ebu-stereo-400", 1, 1, 2, 60), sound("sound-ebu-51", 1, 2, 6, 300),
            sound("sound-blits-51", 1, 3, 6, 150)};
}

} // namespace golden
