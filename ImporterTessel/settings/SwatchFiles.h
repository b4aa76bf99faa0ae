/// The two auxiliary JSON files of the swatch chart, and the same structures inside a data file.
#pragma once

#include <ImporterTessel/settings/TesselInfo.h>
#include <kestrel/orb/File.h>
#include <kestrel/qelcore/serialization/Value.h>

#include <string_view>

namespace ImporterTessel {

/// Document values to records and back; each reader throws `missing_key_exception` or `type_exception`, and
/// `key` names the record in errors, after the keys that lead to it, parted by points; empty for the root.
/// Threads: [any-thread]. @{
[[nodiscard]] SwatchCoordinates SwatchCoordinatesFromValue(const qelcore::serialization::Value& value,
                                                           std::string_view key);
[[nodiscard]] SwatchColors SwatchColorsFromValue(const qelcore::serialization::Value& value,
                                                 std::string_view key);
[[nodiscard]] qelcore::serialization::Value ValueFromSwatchCoordinates(const SwatchCoordinates& coordinates);
[[nodiscard]] qelcore::serialization::Value ValueFromSwatchColors(const SwatchColors& colors);
/// @}

/// Reads a swatch file, in a wrapper ("SerializerWrappedObject") or without.
/// @return the status of the open, or the negative one of reading; negative leaves the output untouched.
/// @throws std::runtime_error "JSON not well-formed", missing_key_exception, type_exception; the output
///         is untouched then, too.
/// Threads: [any-thread]. @{
[[nodiscard]] ORB::Status ReadSwatchCoordinatesFile(std::u16string_view path, SwatchCoordinates& coordinates);
[[nodiscard]] ORB::Status ReadSwatchColorsFile(std::u16string_view path, SwatchColors& colors);
/// @}

} // namespace ImporterTessel
