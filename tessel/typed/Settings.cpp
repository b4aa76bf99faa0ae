#include "Settings.h"

#include "Names.h"
#include "NearMisses.h"
#include "SettingError.h"
#include "ValueReaders.h"

#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/document/settings/ColorSpaceNames.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/FrameRates.h>
#include <tessel/document/settings/Idents.h>
#include <tessel/document/settings/KeyTable.h>
#include <tessel/document/settings/NewDocument.h>
#include <tessel/document/settings/PixelLayouts.h>
#include <tessel/export/plan/Names.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <optional>
#include <system_error>

namespace tessel::typed {
namespace {

using document::DocumentEditor;
using document::KeyInfo;
using exporting::IsSameName;
using qelcore::serialization::AddToObject;
using qelcore::serialization::Object;
using qelcore::serialization::Value;
using Values = std::vector<std::string>;

/// The shortest decimal that reads back as the same 32-bit float; whole numbers without a point.
Value FloatValue(float number)
{
    constexpr float kMostWhole = 16'777'216.0F; // 2^24: beyond it not every whole number is a float
    if (std::trunc(number) == number && std::abs(number) <= kMostWhole) {
        return Value(static_cast<std::int64_t>(number));
    }
    std::array<char, 64> text{};
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), number);
    double value = number;
    if (error == std::errc{}) {
        static_cast<void>(std::from_chars(text.data(), end, value));
    }
    return Value(value);
}

Value Integer(std::int64_t number)
{
    return Value(number);
}

std::int64_t IntegerAt(const DocumentEditor& document, std::string_view path, std::int64_t standard)
{
    return qelcore::serialization::FindInteger(document.Find(path)).value_or(standard);
}

[[noreturn]] void RefuseWord(const std::string& word, const std::string& expected,
                             const std::vector<std::string>& words)
{
    throw SettingError(fmt::format("must be {}, not \"{}\"{}", expected, word, DidYouMean(word, words)));
}

void ApplySize(const Values& values, DocumentEditor& document)
{
    const auto [width, height] = ReadSize(values.front());
    document.Set("mFrameWidth", Integer(width));
    document.Set("mFrameHeight", Integer(height));
}

void ApplyPixelAspect(const Values& values, DocumentEditor& document)
{
    const auto [numerator, denominator] = ReadPixelAspect(values.front());
    document.Set("mFramePAR.numerator", Integer(numerator));
    document.Set("mFramePAR.denominator", Integer(denominator));
}

/// The number of one of a key's named values.
std::int64_t NamedValue(std::span<const document::KeyValue> known, const std::string& word)
{
    for (const document::KeyValue& value : known) {
        if (IsSameName(value.name, word)) {
            return value.value;
        }
    }
    const auto names = NamesOfRows(known);
    RefuseWord(word, fmt::format("one of {}", fmt::join(names, ", ")), names);
}

void ApplyFields(const Values& values, DocumentEditor& document)
{
    document.Set("mFieldType", Integer(NamedValue(document::FieldTypes(), values.front())));
}

void ApplyPicture(const Values& values, DocumentEditor& document)
{
    document.Set("mRenderFormat", Integer(NamedValue(document::RenderFormats(), values.front())));
}

std::vector<std::string> ColorSpaceChoices()
{
    return NamesOfRows(document::AllColorSpaces());
}

void ApplyColorSpace(const Values& values, DocumentEditor& document)
{
    const auto named = document::ColorSpaceNamed(values.front());
    if (!named) {
        RefuseWord(values.front(), "a colour space such as rec709; tessel list color-spaces names all",
                   ColorSpaceChoices());
    }
    const auto& space = named->space;
    Object profile;
    AddToObject(profile, "colorProfileName", Value(space.baseColorProfile.name));
    AddToObject(profile, "colorProfileData",
                Value(qelcore::serialization::EncodeBinaryDataToUTF8String(space.baseColorProfile.data)));
    Object metadata;
    AddToObject(metadata, "metadataVersion", Integer(space.colorSpaceMetadata.metadataVersion));
    AddToObject(metadata, "peakLuminance", FloatValue(space.colorSpaceMetadata.peakLuminance));
    AddToObject(metadata, "dataRangeInfoValid", Value(space.colorSpaceMetadata.dataRangeInfoValid));
    Object object;
    AddToObject(object, "baseColorProfile", Value(std::move(profile)));
    AddToObject(object, "baseProfileType", Integer(space.baseProfileType));
    AddToObject(object, "colorSpaceLinearized", Value(space.colorSpaceLinearized));
    AddToObject(object, "colorSpaceMetadata", Value(std::move(metadata)));
    document.Set("mColorSpace", Value(std::move(object)));
}

std::vector<std::string> PixelLayoutChoices()
{
    return NamesOfRows(document::AllPixelLayouts());
}

/// The matrix that the document's colour space names, by ITU-T H.273.
std::int32_t MatrixOfDocument(const DocumentEditor& document)
{
    constexpr std::size_t kMatrixByte = 2; // primaries, transfer, matrix, full range
    constexpr std::int32_t kRec709 = 1;
    const Value value = document.Find("mColorSpace.baseColorProfile.colorProfileData");
    const auto data = qelcore::serialization::FindText(value); // a view into the value
    if (!data) {
        return kRec709;
    }
    const auto codes = qelcore::serialization::DecodeBinaryDataFromUTF8String(*data);
    return codes.size() > kMatrixByte ? codes[kMatrixByte] : kRec709;
}

/// A layout's name takes the matrix from the colour space: 601 for 601's, else 709. The host's own names and
/// codes say the matrix themselves.
std::uint32_t PixelFormatCode(const std::string& text, const DocumentEditor& document)
{
    for (const document::PixelLayout& layout : document::AllPixelLayouts()) {
        if (layout.name == text) {
            const bool is601 =
                document::MatrixOfSpace(MatrixOfDocument(document)) == document::PixelMatrix::Bt601;
            return BR::BEToSDKPixelFormat(is601 ? layout.with601 : layout.with709);
        }
    }
    constexpr std::string_view kPrefix = "KsPixelFormat_";
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        // Codes differ by case alone: "vuya" and "VUYA".
        if (FourCharacterText(info.sdkCode) == text || IsSameName(info.constant, text) ||
            IsSameName(info.constant.substr(kPrefix.size()), text)) {
            return info.sdkCode;
        }
    }
    RefuseWord(text, "a pixel format such as v210 or bgra-float; tessel list pixel-formats names all",
               PixelLayoutChoices());
}

void ApplyPixelFormat(const Values& values, DocumentEditor& document)
{
    document.Set("mPixelFormat", Integer(PixelFormatCode(values.front(), document)));
}

void ApplyRate(const Values& values, DocumentEditor& document)
{
    const auto [numerator, denominator] = ReadRate(values.front());
    const std::int64_t ticks = document::TicksPerFrame(numerator, denominator);
    if (ticks < 1) {
        throw SettingError(fmt::format("{} frames a second are more than there are ticks", values.front()));
    }
    document.Set("mVideoFrameRate.ticksperframe", Integer(ticks));
}

std::optional<std::string> RemarkOnRate(const Values& values)
{
    const auto [numerator, denominator] = ReadRate(values.front());
    if (document::IsExactRate(numerator, denominator)) {
        return std::nullopt;
    }
    return fmt::format("{} frames a second are no whole number of ticks; the nearest, {} ticks a frame, is "
                       "written",
                       values.front(), document::TicksPerFrame(numerator, denominator));
}

void ApplyDuration(const Values& values, DocumentEditor& document)
{
    const std::int64_t perFrame = IntegerAt(document, "mVideoFrameRate.ticksperframe", 0);
    if (perFrame <= 0) {
        throw SettingError("needs a frame rate: give one, too");
    }
    document.Set("mVideoDuration.ticks", Integer(ReadDuration(values.front(), perFrame)));
}

Value ColorValue(const Color& color)
{
    Object object;
    AddToObject(object, "mRedPart", FloatValue(color[0]));
    AddToObject(object, "mGreenPart", FloatValue(color[1]));
    AddToObject(object, "mBluePart", FloatValue(color[2]));
    AddToObject(object, "mAlphaPart", FloatValue(color[3]));
    return Value(std::move(object));
}

void ApplyColors(const Values& values, DocumentEditor& document)
{
    const std::vector<Color> colors = ReadColors(values.front());
    const std::int64_t picture = IntegerAt(document, "mRenderFormat", document::kRenderGradient);
    if (picture == document::kRenderFieldColors && (colors.size() == 1 || colors.size() == 2)) {
        document.Set("mUpperFieldColor", ColorValue(colors.front()));
        document.Set("mLowerFieldColor", ColorValue(colors.back()));
        return;
    }
    if (picture == document::kRenderGradient && (colors.size() == 2 || colors.size() == 4)) {
        document.Set("mTopGradiantColorStart", ColorValue(colors[0]));
        document.Set("mTopGradiantColorEnd", ColorValue(colors[1]));
        document.Set("mBottomGradiantColorStart", ColorValue(colors[colors.size() - 2]));
        document.Set("mBottomGradiantColorEnd", ColorValue(colors.back()));
        return;
    }
    if (picture == document::kRenderSwatches) {
        throw SettingError("has no effect on a swatch chart, whose colours are in its files: give swatches");
    }
    throw SettingError(
        fmt::format("{} colours were given; field colours have 1 or 2 (upper, lower), a gradient 2 or 4 "
                    "(top start, top end, bottom start, bottom end)",
                    colors.size()));
}

/// Puts one list of a chart into the document.
void SetChartPart(bool isCoordinates, const Value& list, const std::string& place, DocumentEditor& document)
{
    const std::string key = isCoordinates ? "mSwatchCoordinates" : "mSwatchColors";
    document.Set(key, list);
    document.Set(key + "FilePath", Value(place));
}

void LoadSwatchFile(const std::string& name, DocumentEditor& document)
{
    const std::filesystem::path file = qelcore::text::PathOf(name);
    if (std::error_code error; !std::filesystem::exists(file, error)) {
        throw SettingError(importhost::DisplayName(file) + ": no such file");
    }
    std::optional<DocumentEditor> swatches;
    try {
        swatches.emplace(document::DocumentText(file));
    } catch (const importhost::HostError& error) {
        throw SettingError(importhost::DisplayName(file) + ": " + error.what());
    }
    const Value list = swatches->Find("");
    const bool isCoordinates = swatches->Find("colorSwatches").IsObject();
    SetChartPart(isCoordinates, list, name, document);
    const std::string key = isCoordinates ? "mSwatchCoordinates" : "mSwatchColors";
    for (const KeyInfo& info : document::AllKeys()) {
        if (!info.path.starts_with(key + '.')) {
            continue;
        }
        const Value part = document.Find(info.path);
        if (part.IsNothing() || !document::TypeFits(info.type, part)) {
            throw SettingError(fmt::format("{}: \"{}\": expected {}", importhost::DisplayName(file),
                                           info.path.substr(key.size() + 1), document::TypeText(info.type)));
        }
    }
}

void ApplySwatches(const Values& values, DocumentEditor& document)
{
    if (values.size() == 1 && values.front() == "bars") {
        const document::Chart bars = document::ColorBars();
        SetChartPart(/*isCoordinates=*/true, bars.coordinates, "", document);
        SetChartPart(/*isCoordinates=*/false, bars.colors, "", document);
    } else {
        for (const std::string& file : values) {
            LoadSwatchFile(file, document);
        }
    }
    document.Set("mRenderFormat", Integer(document::kRenderSwatches));
}

void ApplyNumber(const Values& values, DocumentEditor& document)
{
    document.Set("mDrawFrameFieldNumber", Value(ReadSwitch(values.front())));
}

void ApplyTone(const Values& values, DocumentEditor& document)
{
    const Tone tone = ReadTone(values.front());
    document.Set("mToneFormat", Integer(0));
    document.Set("mSteadyToneFrequency", FloatValue(tone.frequency));
    document.Set("mSteadyToneAmplitude", FloatValue(tone.amplitude));
}

void ApplyIdent(const Values& values, DocumentEditor& document)
{
    const auto idents = document::AllIdents();
    const auto found = std::find_if(idents.begin(), idents.end(), [&values](const document::Ident& ident) {
        return IsSameName(ident.name, values.front());
    });
    if (found == idents.end()) {
        const auto names = NamesOfRows(idents);
        RefuseWord(values.front(), fmt::format("one of {}", fmt::join(names, ", ")), names);
    }
    document.Set("mToneFormat", Integer(1));
    document.Set("mIdentifierFormat", Integer(found->format));
    document.Set("mKsAudioChannelType", Integer(found->channelType));
    document.Set("mNumChannels", Integer(found->channelCount));
}

void ApplyChannels(const Values& values, DocumentEditor& document)
{
    const int count = ReadChannelCount(values.front());
    constexpr int kSurroundCount = 6;
    document.Set("mNumChannels", Integer(count));
    // More than six channels keep the layout that an identification has chosen.
    if (count <= kSurroundCount) {
        document.Set("mKsAudioChannelType", Integer(count == kSurroundCount ? document::kSurroundChannels
                                                                            : document::kStereoChannels));
    }
}

void ApplySampleRate(const Values& values, DocumentEditor& document)
{
    document.Set("mSampleRate", FloatValue(static_cast<float>(ReadPositive(values.front()))));
}

std::vector<std::string> RateChoices()
{
    return NamesOfRows(document::NamedFrameRates());
}

std::vector<std::string> PixelAspectChoices()
{
    std::vector<std::string> names;
    for (const auto& named : qelmediatypes::kNamedPixelAspectRatios) {
        std::string name(PixelAspectName(named.ratio));
        std::transform(name.begin(), name.end(), name.begin(), [](char letter) {
            return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
        });
        names.push_back(std::move(name));
    }
    return names;
}

constexpr char kPicture[] = "Picture";
constexpr char kTime[] = "Time";
constexpr char kSound[] = "Sound";

constexpr std::array<Setting, 15> kSettings{{
    {.name = "size", .group = kPicture, .value = "WIDTHxHEIGHT", .text = "Frame size", .apply = ApplySize},
    {.name = "pixel-aspect",
     .group = kPicture,
     .value = "RATIO",
     .text = "Pixel aspect ratio: 10/11, or a name",
     .choices = PixelAspectChoices,
     .apply = ApplyPixelAspect},
    {.name = "fields",
     .group = kPicture,
     .value = "ORDER",
     .text = "Field order",
     .choices = [] { return NamesOfRows(document::FieldTypes()); },
     .apply = ApplyFields},
    {.name = "color-space",
     .group = kPicture,
     .value = "NAME",
     .text = "What the clip announces, without changing a sample",
     .choices = ColorSpaceChoices,
     .apply = ApplyColorSpace},
    {.name = "pixel-format",
     .group = kPicture,
     .value = "NAME",
     .text = "A layout, which takes its matrix from the colour space, or one of the host's names and codes, "
             "which say it themselves",
     .choices = PixelLayoutChoices,
     .apply = ApplyPixelFormat},
    {.name = "rate",
     .group = kTime,
     .value = "RATE",
     .text = "Frames a second: 25, 29.97, 30000/1001",
     .choices = RateChoices,
     .apply = ApplyRate,
     .remark = RemarkOnRate},
    {.name = "duration",
     .group = kTime,
     .value = "DURATION",
     .text = "250f, 10s, 500ms, 2m, 1h, 00:00:10:00; times are rounded to whole frames",
     .apply = ApplyDuration},
    {.name = "swatches",
     .group = kPicture,
     .value = "FILE",
     .text = "A swatch chart: its coordinates and its colours, given one after the other; or bars",
     .namesFiles = true,
     .takesSeveral = true,
     .apply = ApplySwatches},
    {.name = "picture",
     .group = kPicture,
     .value = "KIND",
     .text = "What is shown",
     .choices = [] { return NamesOfRows(document::RenderFormats()); },
     .apply = ApplyPicture},
    {.name = "colors",
     .group = kPicture,
     .value = "COLORS",
     .text = "With / between: upper and lower field, or top start, top end, bottom start, bottom end of the "
             "gradient; each as 1,0.5,0.25 or #ff8000 or red",
     .apply = ApplyColors},
    {.name = "number",
     .group = kPicture,
     .value = "on|off",
     .text = "Print the frame number into the picture",
     .apply = ApplyNumber},
    {.name = "tone",
     .group = kSound,
     .value = "HERTZ:DBFS",
     .text = "A steady tone on all channels: 1000:-18, or silence",
     .apply = ApplyTone},
    {.name = "ident",
     .group = kSound,
     .value = "NAME",
     .text = "Channel identification, which sets the channels that it needs",
     .choices = [] { return NamesOfRows(document::AllIdents()); },
     .apply = ApplyIdent},
    {.name = "channels",
     .group = kSound,
     .value = "COUNT",
     .text = "Audio channels; six are 5.1",
     .choices =
         [] {
             return std::vector<std::string>{"mono", "stereo", "5.1"};
         },
     .apply = ApplyChannels},
    {.name = "sample-rate",
     .group = kSound,
     .value = "HERTZ",
     .text = "Samples a second",
     .choices =
         [] {
             return std::vector<std::string>{"44100", "48000", "96000"};
         },
     .apply = ApplySampleRate},
}};

/// Sets a key of the document itself: "mFrameWidth", "mFieldType", "mFramePAR.numerator". The value is JSON,
/// one of the key's names, or for texts the text.
void ApplyKey(std::string_view key, std::string_view value, DocumentEditor& document)
{
    const KeyInfo* info = document::FindKey(key);
    if (info == nullptr) {
        std::vector<std::string> names;
        for (const KeyInfo& known : document::AllKeys()) {
            names.push_back(known.path);
        }
        throw SettingError(fmt::format("\"{}\" is no key of a document; tessel schema names all{}", key,
                                       DidYouMean(key, names)));
    }
    for (const document::KeyValue& known : info->values) {
        if (IsSameName(known.name, value)) {
            document.Set(key, Integer(known.value));
            return;
        }
    }
    const Value parsed = qelcore::serialization::JSONParse(value);
    if (document::TypeFits(info->type, parsed)) {
        document.Set(key, parsed);
        return;
    }
    const Value text{std::string(value)};
    if ((info->type == document::KeyType::Text || info->type == document::KeyType::Base64) &&
        document::TypeFits(info->type, text)) {
        document.Set(key, text);
        return;
    }
    throw SettingError(
        fmt::format("\"{}\": expected {}, not \"{}\"", key, document::TypeText(info->type), value));
}

[[noreturn]] void RefuseKey(const std::string& key)
{
    std::vector<std::string> names = NamesOfRows(AllSettings());
    const std::string known = fmt::format("{}", fmt::join(names, ", "));
    for (const KeyInfo& info : document::AllKeys()) {
        names.push_back(info.path);
    }
    throw SettingError(fmt::format("\"{}\" is no setting; there are {}, and the document's own keys{}", key,
                                   known, DidYouMean(key, names)));
}

} // namespace

std::span<const Setting> AllSettings()
{
    return kSettings;
}

const Setting* SettingNamed(std::string_view name)
{
    const auto* found = std::find_if(kSettings.begin(), kSettings.end(),
                                     [name](const Setting& setting) { return setting.name == name; });
    return found != kSettings.end() ? found : nullptr;
}

Changes ReadChanges(std::span<const std::string> assignments)
{
    Changes changes;
    for (const std::string& assignment : assignments) {
        auto [key, value] = SplitAssignment(assignment);
        if (const Setting* setting = SettingNamed(key)) {
            auto& values = changes.settings[key];
            if (!values.empty() && !setting->takesSeveral) {
                throw SettingError(fmt::format("{} is given twice", key));
            }
            values.push_back(std::move(value));
        } else if (document::FindKey(key) != nullptr) {
            changes.keys.emplace_back(std::move(key), std::move(value));
        } else {
            RefuseKey(key);
        }
    }
    return changes;
}

std::vector<std::string> ApplyChanges(const Changes& changes, std::string_view prefix, DocumentEditor& document)
{
    const TypedSettings& typed = changes.settings;
    if (typed.contains("tone") && typed.contains("ident")) {
        throw SettingError(fmt::format("{0}tone and {0}ident exclude each other", prefix));
    }
    std::vector<std::string> remarks;
    for (const Setting& setting : kSettings) {
        const auto found = typed.find(setting.name);
        if (found == typed.end()) {
            continue;
        }
        try {
            setting.apply(found->second, document);
        } catch (const SettingError& error) {
            throw SettingError(fmt::format("{}{}: {}", prefix, setting.name, error.what()));
        }
        if (auto remark = setting.remark != nullptr ? setting.remark(found->second) : std::nullopt) {
            remarks.push_back(*std::move(remark));
        }
    }
    for (const auto& [key, value] : changes.keys) {
        ApplyKey(key, value, document);
    }
    return remarks;
}

TypedSettings ParseSettings(std::string_view settings)
{
    TypedSettings typed;
    while (!settings.empty()) {
        const std::size_t end = std::min(settings.find(' '), settings.size());
        auto [name, value] = SplitAssignment(std::string(settings.substr(0, end)));
        typed[name].push_back(std::move(value));
        settings.remove_prefix(std::min(end + 1, settings.size()));
    }
    return typed;
}

TypedSettings Merged(const TypedSettings& base, const TypedSettings& typed)
{
    TypedSettings merged = base;
    if (typed.contains("tone") || typed.contains("ident")) {
        merged.erase("tone");
        merged.erase("ident");
        merged.erase("channels");
    }
    if (typed.contains("picture")) {
        merged.erase("swatches");
    }
    if (typed.contains("swatches")) {
        merged.erase("picture");
    }
    for (const auto& [name, values] : typed) {
        merged[name] = values;
    }
    return merged;
}

std::pair<std::string, std::string> SplitAssignment(const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw SettingError(fmt::format("\"{}\": expected KEY=VALUE, as in rate=25", text));
    }
    return {text.substr(0, equals), text.substr(equals + 1)};
}

} // namespace tessel::typed
