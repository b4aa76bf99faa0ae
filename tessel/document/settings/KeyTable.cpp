#include "KeyTable.h"

#include "Idents.h"

#include <algorithm>
#include <array>

namespace tessel::document {
namespace {

constexpr std::array<KeyValue, 3> kFieldTypes{
    {{0, "progressive", "no fields"}, {1, "upper", "upper field first"}, {2, "lower", "lower field first"}}};
constexpr std::array<KeyValue, 3> kRenderFormats{
    {{0, "fields", "each field in its own colour"},
     {1, "gradient", "two gradients that move by a step a frame"},
     {2, "swatches", "the chart of mSwatchCoordinates and mSwatchColors"}}};
constexpr std::array<KeyValue, 2> kChannelTypes{{{2, "stereo", "stereo"}, {3, "5.1", "5.1"}}};
constexpr std::array<KeyValue, 2> kToneFormats{{{0, "tone", "a steady tone on all channels"},
                                                {1, "ident", "channel identification by mIdentifierFormat"}}};
std::span<const KeyValue> IdentifierFormats()
{
    static const std::vector<KeyValue> values = [] {
        std::vector<KeyValue> list;
        for (const Ident& ident : AllIdents()) {
            list.push_back({ident.format, ident.name, ident.title});
        }
        return list;
    }();
    return values;
}

constexpr bool kRequired = true;
constexpr bool kOptional = false;

/// The six colours of the pictures: alpha, red, green, blue of a new document.
struct PictureColor {
    const char* key;
    std::array<const char*, 4> standard;
    const char* meaning;
};
constexpr std::array<PictureColor, 6> kColors{
    {{"mUpperFieldColor", {"1", "1", "0.5", "0.25"}, "field colours: the upper field, and progressive frames"},
     {"mLowerFieldColor", {"1", "0", "1", "0"}, "field colours: the lower field"},
     {"mTopGradiantColorStart", {"1", "1", "0", "0"}, "gradient: the first row, in the first frame"},
     {"mTopGradiantColorEnd", {"1", "0.5", "0.5", "0.5"}, "gradient: the first row, towards the last frame"},
     {"mBottomGradiantColorStart", {"1", "0", "1", "0"}, "gradient: towards the last row, in the first frame"},
     {"mBottomGradiantColorEnd", {"1", "1", "0.5", "0.25"}, "gradient: towards the last row and frame"}}};

void AddColors(std::vector<KeyInfo>& keys)
{
    using enum KeyType;
    constexpr std::array<const char*, 4> kParts = {"mAlphaPart", "mRedPart", "mGreenPart", "mBluePart"};
    for (const PictureColor& color : kColors) {
        keys.push_back({.path = color.key, .type = Object, .isRequired = kRequired, .meaning = color.meaning});
        for (std::size_t i = 0; i < kParts.size(); ++i) {
            keys.push_back({.path = std::string(color.key) + '.' + kParts[i],
                            .type = Number,
                            .isRequired = kRequired,
                            .standard = color.standard[i],
                            .meaning = "nominally 0 to 1, never clamped"});
        }
    }
}

void AddSwatches(std::vector<KeyInfo>& keys)
{
    using enum KeyType;
    constexpr std::array<const char*, 3> kBands = {"colorSwatches", "legalRangeGradient", "fullRangeGradient"};
    const std::string places = "mSwatchCoordinates";
    const std::string colors = "mSwatchColors";
    keys.push_back({.path = places, .type = Object, .meaning = "where the chart's patches lie"});
    for (const char* band : kBands) {
        const std::string path = places + '.' + band;
        keys.push_back({.path = path, .type = Object, .isRequired = kRequired});
        keys.push_back({.path = path + ".xCoordinates",
                        .type = Integers,
                        .isRequired = kRequired,
                        .standard = "[]",
                        .meaning = "middles of the columns, in pixels of 1920"});
        keys.push_back({.path = path + ".yCoordinates",
                        .type = Integers,
                        .isRequired = kRequired,
                        .standard = "[]",
                        .meaning = "middles of the rows, in pixels of 1080"});
    }
    keys.push_back({.path = colors, .type = Object, .meaning = "the colours of the chart's patches"});
    for (const char* band : kBands) {
        keys.push_back({.path = colors + '.' + band,
                        .type = Numbers,
                        .isRequired = kRequired,
                        .standard = "[]",
                        .meaning = "red, green, blue of each patch, all rows of the first column first"});
    }
}

void AddColorSpace(std::vector<KeyInfo>& keys)
{
    using enum KeyType;
    keys.push_back(
        {.path = "mColorSpace", .type = Object, .meaning = "what the clip announces; absent: Rec. 709"});
    keys.push_back({.path = "mColorSpace.baseColorProfile", .type = Object});
    keys.push_back({.path = "mColorSpace.baseColorProfile.colorProfileName",
                    .type = Text,
                    .standard = "\"Rec. 709\"",
                    .meaning = "readable name"});
    keys.push_back({.path = "mColorSpace.baseColorProfile.colorProfileData",
                    .type = Base64,
                    .standard = "\"AQEBAA==\"",
                    .meaning = "four codes of ITU-T H.273: primaries, transfer, matrix, full range"});
    keys.push_back({.path = "mColorSpace.baseProfileType", .type = Integer32, .standard = "0"});
    keys.push_back({.path = "mColorSpace.colorSpaceLinearized", .type = Boolean, .standard = "false"});
    keys.push_back({.path = "mColorSpace.colorSpaceMetadata", .type = Object});
    keys.push_back(
        {.path = "mColorSpace.colorSpaceMetadata.metadataVersion", .type = Integer32, .standard = "1"});
    keys.push_back({.path = "mColorSpace.colorSpaceMetadata.peakLuminance",
                    .type = Number,
                    .standard = "0",
                    .meaning = "cd/m2; 0: not known"});
    keys.push_back(
        {.path = "mColorSpace.colorSpaceMetadata.dataRangeInfoValid", .type = Boolean, .standard = "false"});
    keys.push_back({.path = "mPredefinedColorSpace",
                    .type = Text,
                    .meaning = "in documents of version 0: a name of a colour space, before mColorSpace"});
}

std::vector<KeyInfo> MakeKeys()
{
    using enum KeyType;
    std::vector<KeyInfo> keys;
    const auto add = [&keys](const char* path, KeyType type, bool isRequired, const char* standard,
                             const char* meaning, std::span<const KeyValue> values = {}) {
        keys.push_back({path, type, isRequired, standard, meaning, values});
    };
    add("mVersion", Integer32, kOptional, "1", "1 in new documents; absent: 0");
    add("mPixelFormat", Integer32, kRequired, "1634887522",
        "the host's four-character code, first character in the lowest byte: 1634887522 is bgra");
    add("mFrameWidth", Integer32, kRequired, "720", "pixels");
    add("mFrameHeight", Integer32, kRequired, "480", "pixels");
    add("mFramePAR", Object, kRequired, "", "pixel aspect ratio: width to height");
    add("mFramePAR.numerator", Integer32, kRequired, "1", "");
    add("mFramePAR.denominator", Integer32, kRequired, "1", "");
    add("mFieldType", Integer32, kRequired, "0", "field order", kFieldTypes);
    add("mRenderFormat", Integer32, kRequired, "1", "what the picture shows", kRenderFormats);
    AddColors(keys);
    add("mVideoDuration", Object, kRequired, "", "length");
    add("mVideoDuration.ticks", Integer64, kRequired, "15240960000000", "254016000000 to the second");
    add("mVideoFrameRate", Object, kRequired, "", "frame rate");
    add("mVideoFrameRate.ticksperframe", Integer64, kRequired, "8467200000",
        "ticks of a frame, 254016000000 to the second: 8475667200 is 30000/1001 frames a second; 0: no rate");
    AddColorSpace(keys);
    add("mDrawFrameFieldNumber", Boolean, kOptional, "true", "print the frame number into the picture");
    add("mSwatchCoordinatesFilePath", Text, kOptional, "\"\"", "where mSwatchCoordinates was loaded from");
    add("mSwatchColorsFilePath", Text, kOptional, "\"\"", "where mSwatchColors was loaded from");
    AddSwatches(keys);
    add("mSampleRate", Number, kOptional, "48000", "samples a second");
    add("mKsAudioChannelType", Integer32, kOptional, "2", "channel layout", kChannelTypes);
    add("mNumChannels", Integer32, kOptional, "2", "audio channels");
    add("mToneFormat", Integer32, kOptional, "0", "what is heard", kToneFormats);
    add("mSteadyToneFrequency", Number, kOptional, "1000", "hertz");
    add("mSteadyToneAmplitude", Number, kOptional, "0.25", "linear peak: 0.25 is -12.04 dBFS");
    add("mIdentifierFormat", Integer32, kOptional, "0", "channel identification", IdentifierFormats());
    return keys;
}

} // namespace

const std::vector<KeyInfo>& AllKeys()
{
    static const std::vector<KeyInfo> keys = MakeKeys();
    return keys;
}

const KeyInfo* FindKey(std::string_view path)
{
    const auto& keys = AllKeys();
    const auto found =
        std::find_if(keys.begin(), keys.end(), [path](const KeyInfo& key) { return key.path == path; });
    return found != keys.end() ? &*found : nullptr;
}

std::span<const KeyValue> FieldTypes() noexcept
{
    return kFieldTypes;
}

std::span<const KeyValue> RenderFormats() noexcept
{
    return kRenderFormats;
}

} // namespace tessel::document
