#include "SettingsKeys.h"

#include <kestrel/qelcore/serialization/Json.h>

#include <fstream>
#include <iterator>
#include <variant>

namespace importhost {
namespace {

using qelcore::serialization::Array;
using qelcore::serialization::GetVariantInObject;
using qelcore::serialization::ValuePtr;

constexpr char kWrapper[] = "SerializerWrappedObject";
constexpr const char* kBands[] = {"colorSwatches", "legalRangeGradient", "fullRangeGradient"};

/// The low 32 bits of an integer, as plug-ins take them; nothing for another type.
std::optional<std::uint32_t> Integer32(const ValuePtr& value)
{
    if (value != nullptr) {
        if (const auto* integer = std::get_if<std::int64_t>(&value->Get())) {
            return static_cast<std::uint32_t>(*integer);
        }
        if (const auto* integer = std::get_if<std::uint64_t>(&value->Get())) {
            return static_cast<std::uint32_t>(*integer);
        }
    }
    return std::nullopt;
}

const Array* List(const ValuePtr& value)
{
    return value != nullptr ? std::get_if<Array>(&value->Get()) : nullptr;
}

std::size_t Count(const Array* list)
{
    return list != nullptr ? list->size() : 0;
}

SwatchBand Band(const ValuePtr& coordinates, const ValuePtr& colors, const char* name)
{
    const ValuePtr place = GetVariantInObject(coordinates, name);
    const ValuePtr xValue = GetVariantInObject(place, "xCoordinates");
    const ValuePtr yValue = GetVariantInObject(place, "yCoordinates");
    const ValuePtr colorValue = GetVariantInObject(colors, name);
    const Array* rows = List(yValue);
    SwatchBand band;
    band.xCount = Count(List(xValue));
    band.yCount = Count(rows);
    band.colorPartCount = Count(List(colorValue));
    if (band.yCount > 0) {
        band.firstY = static_cast<std::int32_t>(Integer32(rows->front()).value_or(0));
        band.lastY = static_cast<std::int32_t>(Integer32(rows->back()).value_or(0));
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

ValuePtr Unwrapped(const ValuePtr& root)
{
    return qelcore::serialization::ObjectHasProperty(root, kWrapper) ? GetVariantInObject(root, kWrapper)
                                                                     : root;
}

} // namespace

std::optional<SettingsKeys> SettingsKeysFromText(std::string_view text)
{
    const ValuePtr root = Unwrapped(qelcore::serialization::JSONParse(UpToNul(text)));
    if (root == nullptr || !root->IsObject()) {
        return std::nullopt;
    }
    SettingsKeys keys;
    keys.pixelFormat = Integer32(GetVariantInObject(root, "mPixelFormat")).value_or(keys.pixelFormat);
    const ValuePtr ticks = GetVariantInObject(GetVariantInObject(root, "mVideoFrameRate"), "ticksperframe");
    if (ticks != nullptr) {
        if (const auto* integer = std::get_if<std::int64_t>(&ticks->Get())) {
            keys.ticksPerFrame = *integer;
        }
    }
    if (const auto type = Integer32(GetVariantInObject(root, "mKsAudioChannelType"))) {
        keys.channelType = static_cast<std::int32_t>(*type);
    }
    if (const auto format = Integer32(GetVariantInObject(root, "mRenderFormat"))) {
        keys.renderFormat = static_cast<std::int32_t>(*format);
    }
    const ValuePtr coordinates = GetVariantInObject(root, "mSwatchCoordinates");
    const ValuePtr colors = GetVariantInObject(root, "mSwatchColors");
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
    const ValuePtr root = qelcore::serialization::JSONParse(UpToNul(text), &error);
    if (root == nullptr) {
        return error.empty() ? "not well-formed JSON" : error;
    }
    const ValuePtr settings = Unwrapped(root);
    if (settings != nullptr && settings->IsObject()) {
        return std::nullopt;
    }
    const std::string wrapper = settings == root ? "" : '"' + std::string(kWrapper) + "\": ";
    return wrapper + "expected a JSON object with a clip's settings";
}

} // namespace importhost
