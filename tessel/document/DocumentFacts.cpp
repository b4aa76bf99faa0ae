#include "DocumentFacts.h"

#include "Wrapper.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/orb/File.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <algorithm>
#include <any>
#include <limits>
#include <system_error>

namespace tessel::document {
namespace {

using qelcore::serialization::Elements;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::Value;

/// The low 32 bits of an integer, as the plug-in takes them; nothing for another type.
std::optional<std::uint32_t> Integer32(const Value& value)
{
    const std::optional<std::int64_t> integer = qelcore::serialization::FindInteger(value);
    return integer ? std::optional(static_cast<std::uint32_t>(*integer)) : std::nullopt;
}

/// Leaves `number` as it is where the key is absent or holds no integer.
void ReadInteger(const Value& root, const char* key, std::int32_t& number)
{
    if (const auto integer = Integer32(GetVariantInObject(root, key))) {
        number = static_cast<std::int32_t>(*integer);
    }
}

/// The elements of an array; none of any other value.
Elements List(const Value& value)
{
    return Elements(value.IsArray() ? value : Value());
}

SwatchBand Band(const Value& coordinates, const Value& colors, const char* name)
{
    const Value place = GetVariantInObject(coordinates, name);
    const Elements rows = List(GetVariantInObject(place, "yCoordinates"));
    SwatchBand band;
    band.xCount = List(GetVariantInObject(place, "xCoordinates")).size();
    band.yCount = rows.size();
    band.colorPartCount = List(GetVariantInObject(colors, name)).size();
    if (band.yCount > 0) {
        band.firstY = static_cast<std::int32_t>(Integer32(rows[0]).value_or(0));
        band.lastY = static_cast<std::int32_t>(Integer32(rows[rows.size() - 1]).value_or(0));
    }
    return band;
}

/// Leaves `flag` as it is where the key is absent or holds no boolean.
void ReadFlag(const Value& root, const char* key, bool& flag)
{
    if (!qelcore::serialization::ObjectHasProperty(root, key)) {
        return;
    }
    try {
        flag = qelcore::serialization::AsBoolean(GetVariantInObject(root, key), key);
    } catch (const std::bad_any_cast&) { // of another type: the plug-in refuses the document
    }
}

std::string WhyUnreadable(const std::filesystem::path& file, ORB::Status status)
{
    std::error_code error;
    if (status == ORB::kNotFound) {
        return "no such file";
    }
    if (std::filesystem::is_directory(file, error)) {
        return "is a directory, a file was expected";
    }
    if (std::filesystem::is_other(file, error)) {
        return "is not an ordinary file";
    }
    return status == ORB::kAccessDenied ? "cannot be read: permission denied" : "cannot be read";
}

} // namespace

std::string DocumentText(const std::filesystem::path& file)
{
    ORB::File opened;
    std::uint64_t size = 0;
    std::string text;
    std::uint32_t read = 0;
    ORB::Status status = ORB::File::OpenForReading(importhost::UTF16Path(file), opened);
    if (status >= 0) {
        status = opened.GetSizeOnDisk(size);
    }
    if (status >= 0) {
        text.resize(std::min<std::uint64_t>(size, std::numeric_limits<std::uint32_t>::max()));
        status = opened.Read(text, read);
    }
    if (status < 0) {
        throw importhost::HostError(importhost::DisplayName(file) + ": " + WhyUnreadable(file, status));
    }
    text.resize(read);
    return text;
}

std::optional<DocumentFacts> ReadFacts(std::string_view settingsText)
{
    const Value root = Unwrapped(qelcore::serialization::JSONParse(settingsText));
    if (!root.IsObject()) {
        return std::nullopt;
    }
    DocumentFacts facts;
    facts.pixelFormatCode = Integer32(GetVariantInObject(root, "mPixelFormat")).value_or(facts.pixelFormatCode);
    const Value ticks = GetVariantInObject(GetVariantInObject(root, "mVideoFrameRate"), "ticksperframe");
    facts.ticksPerFrame = qelcore::serialization::FindInteger(ticks).value_or(facts.ticksPerFrame);
    ReadInteger(root, "mKsAudioChannelType", facts.channelType);
    ReadInteger(root, "mFieldType", facts.fieldType);
    ReadInteger(root, "mRenderFormat", facts.renderFormat);
    ReadFlag(root, "mDrawFrameFieldNumber", facts.drawsNumber);
    ReadInteger(root, "mFrameWidth", facts.frameWidth);
    ReadInteger(root, "mFrameHeight", facts.frameHeight);
    ReadInteger(root, "mToneFormat", facts.toneFormat);
    const Value coordinates = GetVariantInObject(root, "mSwatchCoordinates");
    const Value colors = GetVariantInObject(root, "mSwatchColors");
    for (std::size_t i = 0; i < facts.swatchBands.size(); ++i) {
        facts.swatchBands[i] = Band(coordinates, colors, kBandNames[i]);
    }
    return facts;
}

std::optional<DocumentFacts> ReadFactsFromFile(const std::filesystem::path& file)
{
    return ReadFacts(DocumentText(file));
}

std::optional<std::string> DocumentProblem(const std::filesystem::path& file)
{
    const std::string text = DocumentText(file);
    if (text.empty()) {
        return "is empty, a JSON document with a clip's settings was expected";
    }
    std::string error;
    const Value root = qelcore::serialization::JSONParse(text, &error);
    if (root.IsNothing()) {
        return error.empty() ? "not well-formed JSON" : error;
    }
    if (Unwrapped(root).IsObject()) {
        return std::nullopt;
    }
    const bool isWrapped = qelcore::serialization::ObjectHasProperty(root, kWrapperKey);
    return (isWrapped ? '"' + std::string(kWrapperKey) + "\": " : std::string()) +
           "expected a JSON object with a clip's settings";
}

} // namespace tessel::document
