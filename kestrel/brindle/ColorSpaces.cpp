#include "ColorSpaces.h"

#include <kestrel/qelcore/text/LetterCase.h>

#include <algorithm>
#include <array>
#include <optional>

namespace BR {
namespace {

using qelmediatypes::color::ColorSpace;

/// Codes of ITU-T H.273.
struct Codes {
    std::uint8_t primaries;
    std::uint8_t transfer;
    std::uint8_t matrix;
    std::uint8_t fullRange;
    bool operator==(const Codes&) const = default;
};

struct ListedSpace {
    std::string_view name;
    Codes codes;
};

constexpr Codes kRec709{1, 1, 1, 0};
constexpr Codes kUnspecified{2, 2, 2, 0};

constexpr std::array kListedSpaces = {
    ListedSpace{"Rec. 601 (NTSC)", {6, 6, 6, 0}},
    ListedSpace{"Rec. 601 (PAL)", {5, 6, 5, 0}},
    ListedSpace{"Rec. 709", kRec709},
    ListedSpace{"Rec. 709 Full Range", {1, 1, 1, 1}},
    ListedSpace{"sRGB", {1, 13, 0, 1}},
    ListedSpace{"P3-D65 (sRGB transfer)", {12, 13, 0, 1}},
    ListedSpace{"P3-D65 PQ", {12, 16, 0, 1}},
    // SMPTE ST 428-1's transfer (17) is the nearest that H.273 has to a plain power of 2.6.
    ListedSpace{"P3 Theatre (gamma 2.6)", {11, 17, 0, 1}},
    ListedSpace{"Rec. 2020 (10-bit)", {9, 14, 9, 0}},
    ListedSpace{"Rec. 2020 (12-bit)", {9, 15, 9, 0}},
    ListedSpace{"Rec. 2100 PQ", {9, 16, 9, 0}},
    ListedSpace{"Rec. 2100 HLG", {9, 18, 9, 0}},
    ListedSpace{"Rec. 709 Linear", {1, 8, 0, 1}},
    ListedSpace{"Rec. 2020 Linear", {9, 8, 0, 1}},
    ListedSpace{"SMPTE 240M", {7, 7, 7, 0}},
    ListedSpace{"Unspecified", kUnspecified},
};

/// Names that older documents use, beside the descriptive ones.
struct PredefinedName {
    std::string_view predefined;
    std::string_view listed;
};

constexpr std::array kPredefinedNames = {
    PredefinedName{"BT601_NTSC", "Rec. 601 (NTSC)"},
    PredefinedName{"BT601_PAL", "Rec. 601 (PAL)"},
    PredefinedName{"BT709", "Rec. 709"},
    PredefinedName{"BT709_FULL", "Rec. 709 Full Range"},
    PredefinedName{"BT2020", "Rec. 2020 (10-bit)"},
    PredefinedName{"BT2100_PQ", "Rec. 2100 PQ"},
    PredefinedName{"BT2100_HLG", "Rec. 2100 HLG"},
};

ColorSpace SpaceOf(const ListedSpace& listed)
{
    ColorSpace space;
    space.baseColorProfile.name = listed.name;
    const Codes& codes = listed.codes;
    space.baseColorProfile.data = {codes.primaries, codes.transfer, codes.matrix, codes.fullRange};
    return space;
}

/// The colour codes in the profile; nothing where its bytes are something else.
std::optional<Codes> CodesOf(const ColorSpace& space) noexcept
{
    const std::vector<std::uint8_t>& data = space.baseColorProfile.data;
    if (space.baseProfileType != 0 || data.size() != 4 || data[3] > 1) {
        return std::nullopt;
    }
    return Codes{data[0], data[1], data[2], data[3]};
}

bool SameName(std::string_view a, std::string_view b)
{
    using qelcore::text::LowerCase;
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerCase(x) == LowerCase(y); });
}

} // namespace

std::vector<ColorSpace> ColorSpaces::GetSupportedOverridableMediaColorSpaces()
{
    std::vector<ColorSpace> spaces;
    spaces.reserve(kListedSpaces.size());
    for (const ListedSpace& listed : kListedSpaces) {
        spaces.push_back(SpaceOf(listed));
    }
    return spaces;
}

ColorSpace ColorSpaces::Rec709()
{
    return QELColorSpaceFromSDKPredefinedColorSpace("Rec. 709");
}

std::string ColorSpaceUtils::QELColorSpaceToString(const ColorSpace& space, int nameSelector)
{
    if (nameSelector == kDescriptiveName) {
        if (const std::optional<Codes> codes = CodesOf(space)) {
            for (const ListedSpace& listed : kListedSpaces) {
                if (listed.codes == *codes) {
                    return std::string(listed.name);
                }
            }
        }
    }
    return space.baseColorProfile.name;
}

bool DoColorSpacesMatch(const ColorSpace& a, const ColorSpace& b, std::uint32_t matchFlags,
                        PixelFormat /*formatA*/, PixelFormat /*formatB*/) noexcept
{
    const std::optional<Codes> codesA = CodesOf(a);
    const std::optional<Codes> codesB = CodesOf(b);
    if (!codesA || !codesB) {
        return false;
    }
    if ((matchFlags & kMatchCodes) != 0 && *codesA != *codesB) {
        return false;
    }
    if ((matchFlags & kMatchLinearized) != 0 && a.colorSpaceLinearized != b.colorSpaceLinearized) {
        return false;
    }
    return (matchFlags & kMatchProfileType) == 0 || a.baseProfileType == b.baseProfileType;
}

bool QELColorSpaceToSEIColorCodes(const ColorSpace& space, ksSEIColorCodesRec& codes,
                                  bool fallBackToRec709) noexcept
{
    const std::optional<Codes> own = CodesOf(space);
    const Codes written = own.value_or(fallBackToRec709 ? kRec709 : kUnspecified);
    codes = ksSEIColorCodesRec{written.primaries, written.transfer, written.matrix, written.fullRange};
    return own.has_value();
}

ColorSpace QELColorSpaceFromSDKPredefinedColorSpace(std::string_view name)
{
    for (const PredefinedName& known : kPredefinedNames) {
        if (SameName(name, known.predefined)) {
            name = known.listed;
            break;
        }
    }
    for (const ListedSpace& listed : kListedSpaces) {
        if (SameName(name, listed.name)) {
            return SpaceOf(listed);
        }
    }
    return SpaceOf({"Rec. 709", kRec709});
}

} // namespace BR
