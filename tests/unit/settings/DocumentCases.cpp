#include "DocumentCases.h"

#include <kestrel/brindle/ColorSpaces.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace documents {

using ImporterTessel::FloatColor;
using ImporterTessel::TesselInfo;

namespace {

struct Member {
    std::string_view key;
    std::string_view value;
};

constexpr std::array<Member, 14> kRequiredMembers{{
    {"mPixelFormat", "1"},
    {"mFrameWidth", "333"},
    {"mFrameHeight", "222"},
    {"mFramePAR", R"({"numerator": 10, "denominator": 11})"},
    {"mFieldType", "2"},
    {"mRenderFormat", "0"},
    {"mUpperFieldColor", R"({"mAlphaPart": 0.5, "mRedPart": 0.125, "mGreenPart": 2, "mBluePart": -1})"},
    {"mLowerFieldColor", R"({"mAlphaPart": 0, "mRedPart": 1, "mGreenPart": 0.25, "mBluePart": 0.75})"},
    {"mTopGradiantColorStart", R"({"mAlphaPart": 1, "mRedPart": 2, "mGreenPart": 3, "mBluePart": 4})"},
    {"mTopGradiantColorEnd", R"({"mAlphaPart": 5, "mRedPart": 6, "mGreenPart": 7, "mBluePart": 8})"},
    {"mBottomGradiantColorStart", R"({"mAlphaPart": 9, "mRedPart": 10, "mGreenPart": 11, "mBluePart": 12})"},
    {"mBottomGradiantColorEnd", R"({"mAlphaPart": 13, "mRedPart": 14, "mGreenPart": 15, "mBluePart": 16})"},
    {"mVideoDuration", R"({"ticks": 254016000000})"},
    {"mVideoFrameRate", R"({"ticksperframe": 10160640000})"},
}};

std::vector<std::string> SplitAt(const std::string& text, char separator)
{
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);) {
        if (!piece.empty()) {
            pieces.push_back(piece);
        }
    }
    return pieces;
}

std::string RequiredMembers(const std::vector<std::string>& without)
{
    std::string text;
    for (const Member& member : kRequiredMembers) {
        if (std::find(without.begin(), without.end(), member.key) == without.end()) {
            text.append(text.empty() ? "" : ", ").append("\"").append(member.key).append("\": ");
            text.append(member.value);
        }
    }
    return text;
}

template <class Number>
Number ParseNumber(std::string_view text, int base = 10)
{
    Number number{};
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>) {
        result = std::from_chars(text.data(), text.data() + text.size(), number);
    } else {
        result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    }
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        throw std::runtime_error("not a number: " + std::string(text));
    }
    return number;
}

std::string BytesFromHex(std::string_view hex)
{
    std::string bytes;
    for (std::size_t index = 0; index + 1 < hex.size(); index += 2) {
        bytes += static_cast<char>(ParseNumber<int>(hex.substr(index, 2), 16));
    }
    return bytes;
}

std::string Repeat(std::string_view arguments)
{
    const std::size_t comma = arguments.find(',');
    const auto count = ParseNumber<std::size_t>(arguments.substr(0, comma));
    const std::string_view piece = arguments.substr(comma + 1);
    std::string text;
    text.reserve(count * piece.size());
    for (std::size_t index = 0; index < count; ++index) {
        text += piece;
    }
    return text;
}

/// A path's value: 'ASCII text', or UTF-16 code units such as D83D.DE00.
std::u16string ParsePath(const std::string& value)
{
    std::u16string path;
    if (value.front() == '\'') {
        path.assign(value.begin() + 1, value.end() - 1);
        return path;
    }
    for (const std::string& unit : SplitAt(value, '.')) {
        path += static_cast<char16_t>(ParseNumber<std::uint16_t>(unit, 16));
    }
    return path;
}

template <class Item>
std::vector<Item> ParseList(const std::string& value)
{
    std::vector<Item> items;
    for (const std::string& item : SplitAt(value, ',')) {
        items.push_back(ParseNumber<Item>(item));
    }
    return items;
}

qelmediatypes::color::ColorSpace ParseColorSpace(const std::string& value)
{
    if (value == "host-default") {
        return {};
    }
    // Named by its place in the popup, counted from 0.
    return BR::ColorSpaces::GetSupportedOverridableMediaColorSpaces().at(ParseNumber<std::size_t>(value));
}

using Setter = std::function<void(TesselInfo&, const std::string&)>;

template <class Number>
Setter NumberSetter(Number TesselInfo::*field)
{
    return [field](TesselInfo& info, const std::string& value) { info.*field = ParseNumber<Number>(value); };
}

Setter PathSetter(std::u16string TesselInfo::*field)
{
    return [field](TesselInfo& info, const std::string& value) { info.*field = ParsePath(value); };
}

const std::map<std::string, Setter>& Setters()
{
    static const std::map<std::string, Setter> setters{
        {"mVersion", NumberSetter(&TesselInfo::mVersion)},
        {"mPixelFormat", NumberSetter(&TesselInfo::mPixelFormat)},
        {"mFrameWidth", NumberSetter(&TesselInfo::mFrameWidth)},
        {"mFrameHeight", NumberSetter(&TesselInfo::mFrameHeight)},
        {"mFramePAR",
         [](TesselInfo& info, const std::string& value) {
             const auto numbers = ParseList<std::uint32_t>(value);
             info.mFramePAR = {numbers.at(0), numbers.at(1)};
         }},
        {"mFieldType", NumberSetter(&TesselInfo::mFieldType)},
        {"mRenderFormat", NumberSetter(&TesselInfo::mRenderFormat)},
        {"mUpperFieldColor",
         [](TesselInfo& info, const std::string& value) {
             const auto parts = ParseList<float>(value);
             info.mUpperFieldColor = {parts.at(0), parts.at(1), parts.at(2), parts.at(3)};
         }},
        {"ticks",
         [](TesselInfo& info, const std::string& value) {
             info.mVideoDuration = qelmediatypes::TickTime(ParseNumber<std::int64_t>(value));
         }},
        {"ticksperframe",
         [](TesselInfo& info, const std::string& value) {
             info.mVideoFrameRate = {ParseNumber<std::int64_t>(value)};
         }},
        {"mColorSpace",
         [](TesselInfo& info, const std::string& value) { info.mColorSpace = ParseColorSpace(value); }},
        {"colorProfileName",
         [](TesselInfo& info, const std::string& value) { info.mColorSpace.baseColorProfile.name = value; }},
        {"colorProfileData",
         [](TesselInfo& info, const std::string& value) {
             const std::string bytes = value == "none" ? "" : BytesFromHex(value);
             info.mColorSpace.baseColorProfile.data.assign(bytes.begin(), bytes.end());
         }},
        {"baseProfileType",
         [](TesselInfo& info, const std::string& value) {
             info.mColorSpace.baseProfileType = ParseNumber<std::int32_t>(value);
         }},
        {"colorSpaceLinearized",
         [](TesselInfo& info, const std::string& value) {
             info.mColorSpace.colorSpaceLinearized = value == "true";
         }},
        {"metadataVersion",
         [](TesselInfo& info, const std::string& value) {
             info.mColorSpace.colorSpaceMetadata.metadataVersion = ParseNumber<std::int32_t>(value);
         }},
        {"peakLuminance",
         [](TesselInfo& info, const std::string& value) {
             info.mColorSpace.colorSpaceMetadata.peakLuminance = ParseNumber<float>(value);
         }},
        {"dataRangeInfoValid",
         [](TesselInfo& info, const std::string& value) {
             info.mColorSpace.colorSpaceMetadata.dataRangeInfoValid = value == "true";
         }},
        {"mSwatchCoordinatesFilePath", PathSetter(&TesselInfo::mSwatchCoordinatesFilePath)},
        {"mSwatchColorsFilePath", PathSetter(&TesselInfo::mSwatchColorsFilePath)},
        {"coordinates.colorSwatches.x",
         [](TesselInfo& info, const std::string& value) {
             info.mSwatchCoordinates.colorSwatches.xCoordinates = ParseList<std::int32_t>(value);
         }},
        {"coordinates.fullRangeGradient.y",
         [](TesselInfo& info, const std::string& value) {
             info.mSwatchCoordinates.fullRangeGradient.yCoordinates = ParseList<std::int32_t>(value);
         }},
        {"colors.colorSwatches",
         [](TesselInfo& info, const std::string& value) {
             info.mSwatchColors.colorSwatches = ParseList<float>(value);
         }},
        {"colors.legalRangeGradient",
         [](TesselInfo& info, const std::string& value) {
             info.mSwatchColors.legalRangeGradient = ParseList<float>(value);
         }},
        {"mDrawFrameFieldNumber",
         [](TesselInfo& info, const std::string& value) { info.mDrawFrameFieldNumber = value == "true"; }},
        {"mSampleRate", NumberSetter(&TesselInfo::mSampleRate)},
        {"mKsAudioChannelType", NumberSetter(&TesselInfo::mKsAudioChannelType)},
        {"mNumChannels", NumberSetter(&TesselInfo::mNumChannels)},
        {"mToneFormat", NumberSetter(&TesselInfo::mToneFormat)},
        {"mSteadyToneFrequency", NumberSetter(&TesselInfo::mSteadyToneFrequency)},
        {"mSteadyToneAmplitude", NumberSetter(&TesselInfo::mSteadyToneAmplitude)},
        {"mIdentifierFormat", NumberSetter(&TesselInfo::mIdentifierFormat)},
    };
    return setters;
}

void SetFields(const std::vector<std::string>& words, std::size_t first, TesselInfo& record)
{
    for (std::size_t index = first; index < words.size(); ++index) {
        const std::size_t equals = words[index].find('=');
        const auto setter = Setters().find(words[index].substr(0, equals));
        if (equals == std::string::npos || setter == Setters().end()) {
            throw std::runtime_error("no such field: " + words[index]);
        }
        setter->second(record, words[index].substr(equals + 1));
    }
}

void SetAnswer(const std::string& answer, Case& entry)
{
    const std::vector<std::string> words = SplitAt(answer, ' ');
    const std::string kind = words.empty() ? std::string() : words[0];
    const auto key = [&words] { return '"' + words.at(1) + '"'; };
    entry.isLogged = kind != "default" && kind != "reads";
    if (kind == "malformed") {
        entry.logPart = "JSON not well-formed";
    } else if (kind == "missing") {
        entry.logPart = key() + ": missing key";
    } else if (kind == "wrong" || kind == "reads-but") {
        entry.logPart = key() + ": expected";
    } else if (kind == "broken" && words.size() > 1) {
        entry.logPart = key() + ": ";
    } else if (kind != "default" && kind != "reads" && kind != "broken") {
        throw std::runtime_error("no such answer: " + answer);
    }
    if (kind == "reads" || kind == "reads-but") {
        entry.record = RequiredRecord();
        SetFields(words, kind == "reads" ? 1 : 2, entry.record);
    }
}

/// A line without the four spaces that it must begin with.
std::string Indented(const std::string& line)
{
    if (line.rfind("    ", 0) != 0) {
        throw std::runtime_error("a line that should be indented: " + line);
    }
    return line.substr(4);
}

} // namespace

TesselInfo RequiredRecord()
{
    TesselInfo record;
    record.mVersion = 0;
    record.mPixelFormat = 1;
    record.mFrameWidth = 333;
    record.mFrameHeight = 222;
    record.mFramePAR = {10, 11};
    record.mFieldType = 2;
    record.mRenderFormat = 0;
    record.mUpperFieldColor = {0.5F, 0.125F, 2.0F, -1.0F};
    record.mLowerFieldColor = {0.0F, 1.0F, 0.25F, 0.75F};
    record.mTopGradiantColorStart = {1.0F, 2.0F, 3.0F, 4.0F};
    record.mTopGradiantColorEnd = {5.0F, 6.0F, 7.0F, 8.0F};
    record.mBottomGradiantColorStart = {9.0F, 10.0F, 11.0F, 12.0F};
    record.mBottomGradiantColorEnd = {13.0F, 14.0F, 15.0F, 16.0F};
    record.mVideoDuration = qelmediatypes::TickTime(254'016'000'000);
    record.mVideoFrameRate = {10'160'640'000};
    return record;
}

std::string Expand(const std::string& document)
{
    constexpr std::string_view kRequired = "@required";
    constexpr std::string_view kHex = "@hex(";
    constexpr std::string_view kRepeat = "@repeat(";
    std::string text;
    for (std::size_t place = 0; place < document.size();) {
        const auto at = [&](std::string_view word) { return document.compare(place, word.size(), word) == 0; };
        if (at(kRequired)) {
            std::size_t end = place + kRequired.size();
            while (end < document.size() &&
                   (document[end] == '-' || std::isalpha(static_cast<unsigned char>(document[end])) != 0)) {
                ++end;
            }
            const std::size_t keys = place + kRequired.size();
            text += RequiredMembers(SplitAt(document.substr(keys, end - keys), '-'));
            place = end;
        } else if (at(kHex) || at(kRepeat)) {
            const std::size_t arguments = document.find('(', place) + 1;
            const std::size_t end = document.find(')', arguments);
            const std::string inside = document.substr(arguments, end - arguments);
            text += at(kHex) ? BytesFromHex(inside) : Repeat(inside);
            place = end + 1;
        } else {
            text += document[place++];
        }
    }
    return text;
}

std::vector<Case> ReadManifest(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::vector<Case> cases;
    int number = 0;
    const auto nextLine = [&](std::string& line) {
        ++number;
        return static_cast<bool>(std::getline(stream, line));
    };
    try {
        for (std::string line; nextLine(line);) {
            if (line.empty() || line.front() == '#') {
                continue;
            }
            Case entry;
            entry.claim = line;
            entry.line = number;
            std::string document;
            std::string answer;
            if (!nextLine(document) || !nextLine(answer)) {
                throw std::runtime_error("a case of fewer than three lines");
            }
            entry.document = Expand(Indented(document));
            SetAnswer(Indented(answer), entry);
            cases.push_back(std::move(entry));
        }
    } catch (const std::exception& error) {
        throw std::runtime_error(file.string() + ":" + std::to_string(number) + ": " + error.what());
    }
    return cases;
}

} // namespace documents
