/// The colour spaces that the host knows, their names, codes and matching. Threads: [thread-safe].
#pragma once

#include <kestrel/Export.h>
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/importabi/Records.h>
#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace BR {

/// How `QELColorSpaceToString` names a space.
inline constexpr int kDescriptiveName = 1;

struct KESTREL_API ColorSpaces {
    /// The spaces a clip can be told to be in, in popup order. Made afresh at each call.
    [[nodiscard]] static std::vector<qelmediatypes::color::ColorSpace>
    GetSupportedOverridableMediaColorSpaces();

    [[nodiscard]] static qelmediatypes::color::ColorSpace Rec709();
};

struct KESTREL_API ColorSpaceUtils {
    /// The space's readable name in UTF-8: from the list where its codes are there, else the profile's own.
    [[nodiscard]] static std::string QELColorSpaceToString(const qelmediatypes::color::ColorSpace& space,
                                                           int nameSelector);
};

/// What two spaces must share to match. 11, all three, is what dialogs ask for.
enum ColorSpaceMatchFlags : std::uint32_t {
    kMatchCodes = 1,
    kMatchLinearized = 2,
    kMatchProfileType = 8,
};

/// Whether the spaces are the same for pixels of the given formats. Spaces match by their colour codes;
/// profiles without codes match nothing, whatever the flags. This host ignores the formats.
[[nodiscard]] KESTREL_API bool DoColorSpacesMatch(const qelmediatypes::color::ColorSpace& a,
                                                  const qelmediatypes::color::ColorSpace& b,
                                                  std::uint32_t matchFlags, PixelFormat formatA,
                                                  PixelFormat formatB) noexcept;

/// The space's codes per ITU-T H.273.
///
/// @param fallBackToRec709  What to write where the space has no codes: Rec. 709's, else unspecified.
/// @return whether the space itself has codes.
KESTREL_API bool QELColorSpaceToSEIColorCodes(const qelmediatypes::color::ColorSpace& space,
                                              ksSEIColorCodesRec& codes, bool fallBackToRec709) noexcept;

/// The space behind a predefined name of older documents; Rec. 709 for an unknown name. Names are compared
/// without regard to case: "BT601_NTSC", "BT601_PAL", "BT709", "BT709_FULL", "sRGB", "BT2020", "BT2100_PQ",
/// "BT2100_HLG", and the descriptive names.
[[nodiscard]] KESTREL_API qelmediatypes::color::ColorSpace
QELColorSpaceFromSDKPredefinedColorSpace(std::string_view name);

} // namespace BR
