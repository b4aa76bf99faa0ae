#include <kestrel/qelmediatypes/PixelAspectRatio.h>
#include <kestrel/qelmediatypes/color/ColorSpace.h>

#include <gtest/gtest.h>

#include <array>
#include <cstddef>

namespace {

using namespace qelmediatypes;

TEST(ColorSpace, IsUnspecifiedByDefault)
{
    const color::ColorSpace space;
    EXPECT_EQ(space.baseColorProfile.name, "Unspecified");
    EXPECT_EQ(space.baseColorProfile.data, (std::vector<std::uint8_t>{2, 2, 2, 0}));
    EXPECT_EQ(space.baseProfileType, 0);
    EXPECT_FALSE(space.colorSpaceLinearized);
}

TEST(ColorSpace, DiffersWhenAnyPartDiffers)
{
    const color::ColorSpace space;
    std::array<color::ColorSpace, 7> others;
    others[0].baseColorProfile.name += "x";
    others[1].baseColorProfile.data.push_back(0);
    others[2].baseProfileType = 1;
    others[3].colorSpaceLinearized = true;
    others[4].colorSpaceMetadata.metadataVersion = 2;
    others[5].colorSpaceMetadata.peakLuminance = 1000.0F;
    others[6].colorSpaceMetadata.dataRangeInfoValid = true;
    for (std::size_t i = 0; i < others.size(); ++i) {
        EXPECT_NE(others[i], space) << i;
    }
    EXPECT_EQ(color::ColorSpace(), space);
}

TEST(PixelAspectRatio, NamedRatiosArePairwiseDifferentAsFractions)
{
    const auto& named = kNamedPixelAspectRatios;
    ASSERT_EQ(named.size(), 13U);
    for (std::size_t i = 0; i < named.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            const std::uint64_t left =
                std::uint64_t{named[i].ratio.GetNumerator()} * named[k].ratio.GetDenominator();
            const std::uint64_t right =
                std::uint64_t{named[k].ratio.GetNumerator()} * named[i].ratio.GetDenominator();
            EXPECT_NE(left, right) << named[i].constant << " and " << named[k].constant;
        }
    }
}

TEST(PixelAspectRatio, KeepsItsNumbersAsGiven)
{
    constexpr PixelAspectRatio kRatio(4, 2);
    EXPECT_EQ(kRatio.GetNumerator(), 4U);
    EXPECT_EQ(kRatio.GetDenominator(), 2U);
    EXPECT_NE(kRatio, PixelAspectRatio(2, 1));
}

} // namespace
