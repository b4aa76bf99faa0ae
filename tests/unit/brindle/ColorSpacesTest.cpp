#include <kestrel/brindle/ColorSpaces.h>

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace {

using namespace BR;
using qelmediatypes::color::ColorSpace;

constexpr std::uint32_t kDialogFlags = 11;
constexpr PixelFormat kFormat = PixelFormat::BGRA_4444_8u;

struct Row {
    const char* name;
    std::array<int, 4> codes;
};

// ITU-T H.273: primaries (table 2), transfer (table 3), matrix (table 4), full range flag.
const std::vector<Row> kRows = {
    {"Rec. 601 (NTSC)", {6, 6, 6, 0}},
    {"Rec. 601 (PAL)", {5, 6, 5, 0}},
    {"Rec. 709", {1, 1, 1, 0}},
    {"Rec. 709 Full Range", {1, 1, 1, 1}},
    {"sRGB", {1, 13, 0, 1}},
    {"P3-D65 (sRGB transfer)", {12, 13, 0, 1}},
    {"P3-D65 PQ", {12, 16, 0, 1}},
    {"P3 Theatre (gamma 2.6)", {11, 17, 0, 1}},
    {"Rec. 2020 (10-bit)", {9, 14, 9, 0}},
    {"Rec. 2020 (12-bit)", {9, 15, 9, 0}},
    {"Rec. 2100 PQ", {9, 16, 9, 0}},
    {"Rec. 2100 HLG", {9, 18, 9, 0}},
    {"Rec. 709 Linear", {1, 8, 0, 1}},
    {"Rec. 2020 Linear", {9, 8, 0, 1}},
    {"SMPTE 240M", {7, 7, 7, 0}},
    {"Unspecified", {2, 2, 2, 0}},
};

std::array<int, 4> CodesOf(const ColorSpace& space, bool fallBack, bool expectOwn)
{
    ksSEIColorCodesRec codes{-1, -1, -1, -1};
    EXPECT_EQ(QELColorSpaceToSEIColorCodes(space, codes, fallBack), expectOwn);
    return {codes.primaries, codes.transfer, codes.matrix, codes.fullRange};
}

ColorSpace WithoutCodes()
{
    ColorSpace space;
    space.baseColorProfile = {"A printer's profile", {0, 1, 2, 3, 4, 5}};
    return space;
}

TEST(ColorSpaces, ListHoldsTheSpacesInPopupOrderWithTheirCodes)
{
    const std::vector<ColorSpace> spaces = ColorSpaces::GetSupportedOverridableMediaColorSpaces();
    ASSERT_EQ(spaces.size(), kRows.size());
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        EXPECT_EQ(ColorSpaceUtils::QELColorSpaceToString(spaces[i], kDescriptiveName), kRows[i].name);
        EXPECT_EQ(spaces[i].baseColorProfile.name, kRows[i].name);
        EXPECT_EQ(CodesOf(spaces[i], false, true), kRows[i].codes) << kRows[i].name;
    }
}

TEST(ColorSpaces, EachOfTheListMatchesItselfAlone)
{
    const std::vector<ColorSpace> spaces = ColorSpaces::GetSupportedOverridableMediaColorSpaces();
    for (std::size_t i = 0; i < spaces.size(); ++i) {
        for (std::size_t k = 0; k < spaces.size(); ++k) {
            EXPECT_EQ(DoColorSpacesMatch(spaces[i], spaces[k], kDialogFlags, kFormat, kFormat), i == k)
                << kRows[i].name << " and " << kRows[k].name;
        }
    }
}

TEST(ColorSpaces, DefaultConstructedIsTheListsUnspecified)
{
    EXPECT_EQ(ColorSpaces::GetSupportedOverridableMediaColorSpaces().back(), ColorSpace());
}

TEST(ColorSpaces, Rec709IsTheListsThird)
{
    EXPECT_EQ(ColorSpaces::Rec709(), ColorSpaces::GetSupportedOverridableMediaColorSpaces()[2]);
}

TEST(ColorSpaces, MatchingGoesByCodesNotByName)
{
    ColorSpace renamed = ColorSpaces::Rec709();
    renamed.baseColorProfile.name = "Television";
    EXPECT_TRUE(DoColorSpacesMatch(renamed, ColorSpaces::Rec709(), kDialogFlags, kFormat, kFormat));
    EXPECT_EQ(ColorSpaceUtils::QELColorSpaceToString(renamed, kDescriptiveName), "Rec. 709");

    ColorSpace misnamed;
    misnamed.baseColorProfile.name = "Rec. 709";
    EXPECT_FALSE(DoColorSpacesMatch(misnamed, ColorSpaces::Rec709(), kDialogFlags, kFormat, kFormat));
}

TEST(ColorSpaces, ProfilesWithoutCodesMatchNothingNotEvenThemselves)
{
    const ColorSpace opaque = WithoutCodes();
    for (const std::uint32_t flags : {0U, 1U, 2U, 8U, kDialogFlags}) {
        EXPECT_FALSE(DoColorSpacesMatch(opaque, opaque, flags, kFormat, kFormat)) << flags;
        EXPECT_FALSE(DoColorSpacesMatch(opaque, ColorSpace(), flags, kFormat, kFormat)) << flags;
        EXPECT_FALSE(DoColorSpacesMatch(ColorSpace(), opaque, flags, kFormat, kFormat)) << flags;
    }
}

TEST(ColorSpaces, EachFlagComparesItsOwnPart)
{
    const ColorSpace plain = ColorSpaces::Rec709();
    ColorSpace linear = plain;
    linear.colorSpaceLinearized = true;
    EXPECT_FALSE(DoColorSpacesMatch(plain, linear, kDialogFlags, kFormat, kFormat));
    EXPECT_FALSE(DoColorSpacesMatch(plain, linear, kMatchLinearized, kFormat, kFormat));
    EXPECT_TRUE(DoColorSpacesMatch(plain, linear, kMatchCodes | kMatchProfileType, kFormat, kFormat));
    EXPECT_TRUE(DoColorSpacesMatch(plain, ColorSpace(), kMatchLinearized, kFormat, kFormat));
    EXPECT_FALSE(DoColorSpacesMatch(plain, ColorSpace(), kMatchCodes, kFormat, kFormat));
}

TEST(ColorSpaces, BytesOfAnotherProfileTypeAreNoCodes)
{
    ColorSpace other = ColorSpaces::Rec709();
    other.baseProfileType = 1;
    EXPECT_EQ(CodesOf(other, false, false), (std::array{2, 2, 2, 0}));
    EXPECT_EQ(ColorSpaceUtils::QELColorSpaceToString(other, kDescriptiveName), "Rec. 709");
}

TEST(SEIColorCodes, SpaceWithoutCodesGivesUnspecifiedOrRec709AsAsked)
{
    EXPECT_EQ(CodesOf(WithoutCodes(), false, false), (std::array{2, 2, 2, 0}));
    EXPECT_EQ(CodesOf(WithoutCodes(), true, false), (std::array{1, 1, 1, 0}));
    EXPECT_EQ(CodesOf(ColorSpace(), true, true), (std::array{2, 2, 2, 0}));
}

TEST(SEIColorCodes, CodesOutsideTheListAreHandedThrough)
{
    ColorSpace film;
    film.baseColorProfile = {"Film", {8, 9, 4, 1}};
    EXPECT_EQ(CodesOf(film, true, true), (std::array{8, 9, 4, 1}));
    EXPECT_EQ(ColorSpaceUtils::QELColorSpaceToString(film, kDescriptiveName), "Film");
    EXPECT_TRUE(DoColorSpacesMatch(film, film, kDialogFlags, kFormat, kFormat));
}

TEST(SEIColorCodes, RangeFlagBeyondOneMeansNoCodes)
{
    ColorSpace odd;
    odd.baseColorProfile = {"Odd", {1, 1, 1, 2}};
    EXPECT_EQ(CodesOf(odd, false, false), (std::array{2, 2, 2, 0}));
}

TEST(PredefinedColorSpaces, NamesOfOlderDocumentsLeadToTheList)
{
    const std::vector<std::array<const char*, 2>> names = {{"BT601_NTSC", "Rec. 601 (NTSC)"},
                                                           {"BT601_PAL", "Rec. 601 (PAL)"},
                                                           {"BT709", "Rec. 709"},
                                                           {"BT709_FULL", "Rec. 709 Full Range"},
                                                           {"sRGB", "sRGB"},
                                                           {"BT2020", "Rec. 2020 (10-bit)"},
                                                           {"BT2100_PQ", "Rec. 2100 PQ"},
                                                           {"BT2100_HLG", "Rec. 2100 HLG"},
                                                           {"bt601_ntsc", "Rec. 601 (NTSC)"},
                                                           {"SRGB", "sRGB"},
                                                           {"rec. 2020 (12-BIT)", "Rec. 2020 (12-bit)"}};
    for (const auto& [predefined, descriptive] : names) {
        EXPECT_EQ(QELColorSpaceFromSDKPredefinedColorSpace(predefined).baseColorProfile.name, descriptive);
    }
    for (const ColorSpace& space : ColorSpaces::GetSupportedOverridableMediaColorSpaces()) {
        EXPECT_EQ(QELColorSpaceFromSDKPredefinedColorSpace(space.baseColorProfile.name), space);
    }
}

TEST(PredefinedColorSpaces, UnknownNamesGiveRec709)
{
    for (const char* name : {"", "BT", "BT7090", "nonsense"}) {
        EXPECT_EQ(QELColorSpaceFromSDKPredefinedColorSpace(name), ColorSpaces::Rec709()) << name;
    }
}

} // namespace
