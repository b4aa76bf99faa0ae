#include "SettingsKeys.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <fstream>
#include <iterator>

namespace importhost {
namespace {

using qelcore::serialization::Elements;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::Value;

constexpr char kWrapper[] = "SerializerWrappedObject";
constexpr const char* kBands[] = {"colorSwatches", "legalRangeGradient", "fullRangeGradient"};

/// The low 32 bits of an integer, as plug-ins take them; nothing for another type.
std::optional<std::uint32_t> Integer32(const Value& value)
{
    const std::optional<std::int64_t> integer = qelcore::serialization::FindInteger(value);
    return integer ? std::optional(static_cast<std::uint32_t>(*integer)) : std::nullopt;
}

/// The elements of an array; none of any other value.
Elements List(const Value& value)
{
    return Elements(value.IsArray() ? value : Value());
}

SwatchBand Band(const Value& coordinates, const Value& colors, const char* name)
{
    const Value place = GetVariantInObject(coordinates, name);
    const Value xValue = GetVariantInObject(place, "xCoordinates");
    const Value yValue = GetVariantInObject(place, "yCoordinates");
    const Value colorValue = GetVariantInObject(colors, name);
    const Elements rows = List(yValue);
    SwatchBand band;
    band.xCount = List(xValue).size();
    band.yCount = rows.size();
    band.colorPartCount = List(colorValue).size();
    if (band.yCount > 0) {
        band.firstY = static_cast<std::int32_t>(Integer32(rows[0]).value_or(0));
        band.lastY = static_cast<std::int32_t>(Integer32(rows[rows.size() - 1]).value_or(0));
    }
    return band;
}

std::string Contents(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::string_view UpToNul(std::string_view text)
{
    return text.substr(0, text.find('\0'));
}

Value Unwrapped(const Value& root)
{
    return qelcore::serialization::ObjectHasProperty(root, kWrapper) ? GetVariantInObject(root, kWrapper)
                                                                     : root;
}

} // namespace

std::optional<SettingsKeys> SettingsKeysFromText(std::string_view text)
{
    const Value root = Unwrapped(qelcore::serialization::JSONParse(UpToNul(text)));
    if (!root.IsObject()) {
        return std::nullopt;
    }
    SettingsKeys keys;
    keys.pixelFormat = Integer32(GetVariantInObject(root, "mPixelFormat")).value_or(keys.pixelFormat);
    const Value ticks = GetVariantInObject(GetVariantInObject(root, "mVideoFrameRate"), "ticksperframe");
    keys.ticksPerFrame = qelcore::serialization::FindInteger(ticks).value_or(keys.ticksPerFrame);
    if (const auto type = Integer32(GetVariantInObject(root, "mKsAudioChannelType"))) {
        keys.channelType = static_cast<std::int32_t>(*type);
    }
    if (const auto format = Integer32(GetVariantInObject(root, "mRenderFormat"))) {
        keys.renderFormat = static_cast<std::int32_t>(*format);
    }
    const Value coordinates = GetVariantInObject(root, "mSwatchCoordinates");
    const Value colors = GetVariantInObject(root, "mSwatchColors");
    for (std::size_t i = 0; i < keys.swatchBands.size(); ++i) {
        keys.swatchBands[i] = Band(coordinates, colors, kBands[i]);
    }
    return keys;
}

std::optional<SettingsKeys> SettingsKeysFromFile(const std::filesystem::path& file)
{
    return SettingsKeysFromText(Contents(file));
}

std::optional<std::string> DocumentProblem(const std::filesystem::path& file)
{
    const std::string text = Contents(file);
    std::string error;
    const Value root = qelcore::serialization::JSONParse(UpToNul(text), &error);
    if (root.IsNothing()) {
        return error.empty() ? "not well-formed JSON" : error;
    }
    const Value settings = Unwrapped(root);
    if (settings.IsObject()) {
        return std::nullopt;
    }
    const std::string wrapper =
        !qelcore::serialization::ObjectHasProperty(root, kWrapper) ? "" : '"' + std::string(kWrapper) + "\": ";
    return wrapper + "expected a JSON object with a clip's settings";
}

} // namespace importhost
