#include "ColorSpaceDocument.h"

#include "DocumentFields.h"

#include <kestrel/qelcore/exceptions/Exceptions.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace ImporterTessel {

using namespace qelcore::serialization;
using qelmediatypes::color::ColorProfile;
using qelmediatypes::color::ColorSpace;
using qelmediatypes::color::ColorSpaceMetaData;

namespace {

std::vector<std::uint8_t> BytesFromValue(const Value& value, std::string_view key)
{
    const std::string_view text = AsText(value, key);
    try {
        return DecodeBinaryDataFromUTF8String(text);
    } catch (const parse_exception& error) {
        throw parse_exception('"' + std::string(key) + "\": " + error.what());
    }
}

ColorProfile ProfileFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "ColorProfile");
    // The default space's profile, which is not empty as a default-constructed profile is.
    ColorProfile profile = ColorSpace().baseColorProfile;
    reader.ReadIfPresent("colorProfileName", profile.name);
    reader.ReadIfPresent("colorProfileData", profile.data, BytesFromValue);
    return profile;
}

ColorSpaceMetaData MetadataFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "ColorSpaceMetaData");
    ColorSpaceMetaData metadata = ColorSpace().colorSpaceMetadata;
    reader.ReadIfPresent("metadataVersion", metadata.metadataVersion);
    reader.ReadIfPresent("peakLuminance", metadata.peakLuminance);
    reader.ReadIfPresent("dataRangeInfoValid", metadata.dataRangeInfoValid);
    return metadata;
}

Value ValueFromProfile(const ColorProfile& profile)
{
    Object object;
    AddToObject(object, "colorProfileName", TextValue(profile.name));
    AddToObject(object, "colorProfileData", TextValue(EncodeBinaryDataToUTF8String(profile.data)));
    return Value(std::move(object));
}

Value ValueFromMetadata(const ColorSpaceMetaData& metadata)
{
    Object object;
    AddToObject(object, "metadataVersion", IntegerValue(metadata.metadataVersion));
    AddToObject(object, "peakLuminance", NumberValue(metadata.peakLuminance));
    AddToObject(object, "dataRangeInfoValid", BooleanValue(metadata.dataRangeInfoValid));
    return Value(std::move(object));
}

} // namespace

ColorSpace ColorSpaceFromValue(const Value& value, std::string_view key)
{
    const ObjectReader reader(value, key, "ColorSpace");
    ColorSpace space;
    reader.ReadIfPresent("baseColorProfile", space.baseColorProfile, ProfileFromValue);
    reader.ReadIfPresent("baseProfileType", space.baseProfileType);
    reader.ReadIfPresent("colorSpaceLinearized", space.colorSpaceLinearized);
    reader.ReadIfPresent("colorSpaceMetadata", space.colorSpaceMetadata, MetadataFromValue);
    return space;
}

Value ValueFromColorSpace(const ColorSpace& space)
{
    Object object;
    AddToObject(object, "baseColorProfile", ValueFromProfile(space.baseColorProfile));
    AddToObject(object, "baseProfileType", IntegerValue(space.baseProfileType));
    AddToObject(object, "colorSpaceLinearized", BooleanValue(space.colorSpaceLinearized));
    AddToObject(object, "colorSpaceMetadata", ValueFromMetadata(space.colorSpaceMetadata));
    return Value(std::move(object));
}

} // namespace ImporterTessel
