/// Colour spaces as a host value: a profile, how it is to be taken, and facts about the signal. [any-thread]
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace qelmediatypes::color {

/// A named profile. The bytes of this host's own profiles are the four colour codes of ITU-T H.273
/// (primaries, transfer, matrix, full range); the bytes of anything else are opaque.
struct ColorProfile {
    std::string name;               ///< UTF-8
    std::vector<std::uint8_t> data; ///< any length
    bool operator==(const ColorProfile&) const = default;
};

struct ColorSpaceMetaData {
    std::int32_t metadataVersion = 1;
    float peakLuminance = 0.0F; ///< cd/m²; 0 where it is not known
    bool dataRangeInfoValid = false;
    bool operator==(const ColorSpaceMetaData&) const = default;
};

/// Value type. Default-constructed it is the unspecified colour space (codes 2, 2, 2, 0).
struct KESTREL_API ColorSpace {
    ColorSpace();

    ColorProfile baseColorProfile;
    std::int32_t baseProfileType = 0; ///< host's code; 0: `data` holds colour codes
    bool colorSpaceLinearized = false;
    ColorSpaceMetaData colorSpaceMetadata;
    bool operator==(const ColorSpace&) const = default;
};

} // namespace qelmediatypes::color
