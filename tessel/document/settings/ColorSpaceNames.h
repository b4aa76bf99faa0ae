/// Colour spaces by names that can be typed.
#pragma once

#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::document {

struct NamedColorSpace {
    std::string name;  ///< "rec709", "rec2100-pq"
    std::string title; ///< "Rec. 709"
    std::int32_t primaries;
    std::int32_t transfer;
    std::int32_t matrix;
    bool isFullRange;
    qelmediatypes::color::ColorSpace space;
};

/// Made from the host's list, in its order.
[[nodiscard]] std::vector<NamedColorSpace> AllColorSpaces();

/// By its name or its title; case, blanks and punctuation do not count. Also by a beginning that one space
/// alone has, or that is a whole name: "rec601" is refused because two begin so; "rec601-pal" and "bt709" are
/// accepted.
[[nodiscard]] std::optional<NamedColorSpace> ColorSpaceNamed(std::string_view text);

} // namespace tessel::document
