#include <ImporterTessel/dialog/ChoiceTables.h>
#include <kestrel/brindle/PixelFormat.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace ImporterTessel;

TEST(FrameRateChoices, HoldTheTicksOfTheirRates)
{
    const std::int64_t wanted[] = {25401600000, 21168000000, 20321280000, 16934400000, 10594584000,
                                   10584000000, 10160640000, 8475667200,  8467200000,  5080320000,
                                   4237833600,  4233600000,  2540160000,  254016000};
    const auto choices = FrameRateChoices();
    ASSERT_EQ(choices.size(), std::size(wanted));
    for (std::size_t index = 0; index < choices.size(); ++index) {
        EXPECT_EQ(choices[index].rate.ticksPerFrame, wanted[index]) << choices[index].label;
    }
}

TEST(FrameRateChoices, TheMisprintedLabelHasTheTrueRate)
{
    EXPECT_EQ(FrameRateChoices()[10].label, "NTSC HD - 59.94 fps - (60000.0 / 10001.0)");
    EXPECT_EQ(FrameRateChoices()[10].rate.ticksPerFrame, qelmediatypes::kTicksPerSecond * 1001 / 60000);
    EXPECT_EQ(FrameRateChoices()[7].label, "NTSC - 29.97 fps - (30000.0 / 1001.0");
}

TEST(PixelFormatChoices, AreTheHostsListInItsOrder)
{
    const auto choices = PixelFormatChoices();
    const auto formats = BR::AllPixelFormats();
    ASSERT_EQ(choices.size(), 48U);
    ASSERT_EQ(formats.size(), 48U);
    for (std::size_t index = 0; index < choices.size(); ++index) {
        EXPECT_EQ(choices[index].name, formats[index].constant) << index;
        EXPECT_EQ(choices[index].code, formats[index].sdkCode) << choices[index].name;
    }
}

TEST(PixelFormatChoices, CodesAreFourBytesInMemoryOrder)
{
    EXPECT_EQ(PixelFormatChoices()[0].code, 0x61726762U);  // "bgra"
    EXPECT_EQ(PixelFormatChoices()[28].code, 0x30313276U); // "v210"
}

TEST(PixelAspectChoices, HaveThirteenDifferentRatiosNamedAfterTheirConstants)
{
    std::set<std::pair<std::uint32_t, std::uint32_t>> ratios;
    for (const PixelAspectChoice& choice : PixelAspectChoices()) {
        ratios.emplace(choice.ratio.GetNumerator(), choice.ratio.GetDenominator());
        EXPECT_TRUE(choice.name.starts_with("kPixelAspectRatio_")) << choice.name;
    }
    EXPECT_EQ(ratios.size(), 13U);
    EXPECT_EQ(PixelAspectChoices()[7].name, "kPixelAspectRatio_DVCProHD");
    EXPECT_EQ(PixelAspectChoices()[7].ratio, qelmediatypes::kPixelAspectRatio_DVCProHD);
}

TEST(IdentifierFormatChoices, DependOnTheChannelType)
{
    ASSERT_EQ(IdentifierFormatChoices(3).size(), 2U);
    EXPECT_EQ(IdentifierFormatChoices(3)[0].format, 2);
    EXPECT_EQ(IdentifierFormatChoices(3)[1].label, "BLITS (5.1)");
    ASSERT_EQ(IdentifierFormatChoices(2).size(), 2U);
    EXPECT_EQ(IdentifierFormatChoices(2)[0].label, "EBU Stereo (1000 Hz)");
    EXPECT_EQ(IdentifierFormatChoices(2)[1].format, 1);
    for (const std::int32_t other : {-1, 0, 1, 4, 2147483647}) {
        EXPECT_TRUE(IdentifierFormatChoices(other).empty()) << other;
    }
}

TEST(ChoiceAt, GivesNothingOutsideTheTable)
{
    const auto table = FrameRateChoices();
    EXPECT_EQ(ChoiceAt(table, -1), nullptr);
    EXPECT_EQ(ChoiceAt(table, 14), nullptr);
    EXPECT_EQ(ChoiceAt(table, 2147483647), nullptr);
    EXPECT_EQ(ChoiceAt(table, 13), &table[13]);
}

TEST(ColorSpaceChoices, ComeFromTheHostInItsOrder)
{
    const auto spaces = ColorSpaceChoices();
    ASSERT_EQ(spaces.size(), 16U);
    EXPECT_EQ(spaces[0].baseColorProfile.name, "Rec. 601 (NTSC)");
}

} // namespace
