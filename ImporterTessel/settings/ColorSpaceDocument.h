/// Colour spaces inside a data file.
#pragma once

#include <kestrel/qelcore/serialization/Value.h>
#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <string_view>

namespace ImporterTessel {

/// Reads a colour space. Every key is optional: what is absent stays as the host's default-constructed space
/// (not Rec. 709) has it.
/// @throws qelcore::serialization::type_exception for a present key of the wrong type, parse_exception for
///         profile data that is not Base64; each names the key.
[[nodiscard]] qelmediatypes::color::ColorSpace ColorSpaceFromValue(const qelcore::serialization::Value& value,
                                                                   std::string_view key);

/// The colour space with all its keys, the profile's bytes encoded as a text.
[[nodiscard]] qelcore::serialization::Value ValueFromColorSpace(const qelmediatypes::color::ColorSpace& space);

} // namespace ImporterTessel
