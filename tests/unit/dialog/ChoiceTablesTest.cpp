#include <ImporterTessel/dialog/ChoiceTables.h>
#include <kestrel/brindle/PixelFormat.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iterator>
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

TEST(PixelFormatChoices, AreThese48InThisOrder)
{
    struct Row {
        const char* name;
        const char* bytes; // of the code, in memory order
    };
    constexpr Row kRows[] = {
        {"KsPixelFormat_BGRA_4444_8u", "bgra"},
        {"KsPixelFormat_VUYA_4444_8u", "vuya"},
        {"KsPixelFormat_VUYA_4444_8u_709", "VUYA"},
        {"KsPixelFormat_ARGB_4444_8u", "argb"},
        {"KsPixelFormat_BGRX_4444_8u", "bgrx"},
        {"KsPixelFormat_VUYX_4444_8u", "vuyx"},
        {"KsPixelFormat_VUYX_4444_8u_709", "vux7"},
        {"KsPixelFormat_XRGB_4444_8u", "xrgb"},
        {"KsPixelFormat_BGRP_4444_8u", "bgrp"},
        {"KsPixelFormat_VUYP_4444_8u", "vuyp"},
        {"KsPixelFormat_VUYP_4444_8u_709", "vup7"},
        {"KsPixelFormat_PRGB_4444_8u", "prgb"},
        {"KsPixelFormat_BGRA_4444_32f", "BGra"},
        {"KsPixelFormat_VUYA_4444_32f", "VUya"},
        {"KsPixelFormat_VUYA_4444_32f_709", "vUYa"},
        {"KsPixelFormat_ARGB_4444_32f", "ARgb"},
        {"KsPixelFormat_BGRX_4444_32f", "BGrx"},
        {"KsPixelFormat_VUYX_4444_32f", "VUyx"},
        {"KsPixelFormat_VUYX_4444_32f_709", "VUx7"},
        {"KsPixelFormat_XRGB_4444_32f", "XRgb"},
        {"KsPixelFormat_BGRP_4444_32f", "BGrp"},
        {"KsPixelFormat_VUYP_4444_32f", "VUyp"},
        {"KsPixelFormat_VUYP_4444_32f_709", "VUp7"},
        {"KsPixelFormat_PRGB_4444_32f", "PRgb"},
        {"KsPixelFormat_YUYV_422_8u_601", "yuy2"},
        {"KsPixelFormat_YUYV_422_8u_709", "yuy3"},
        {"KsPixelFormat_UYVY_422_8u_601", "uyvy"},
        {"KsPixelFormat_UYVY_422_8u_709", "uyv7"},
        {"KsPixelFormat_V210_422_10u_601", "v210"},
        {"KsPixelFormat_V210_422_10u_709", "v211"},
        {"KsPixelFormat_BGRA_4444_32f_Linear", "BGaL"},
        {"KsPixelFormat_BGRP_4444_32f_Linear", "BGpL"},
        {"KsPixelFormat_BGRX_4444_32f_Linear", "BGxL"},
        {"KsPixelFormat_ARGB_4444_32f_Linear", "ARgL"},
        {"KsPixelFormat_PRGB_4444_32f_Linear", "PRgL"},
        {"KsPixelFormat_XRGB_4444_32f_Linear", "XRgL"},
        {"KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601", "yv12"},
        {"KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601", "yvi2"},
        {"KsPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709", "yv17"},
        {"KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709", "yvi7"},
        {"KsPixelFormat_NTSCDV25", "dvn2"},
        {"KsPixelFormat_PALDV25", "dvp2"},
        {"KsPixelFormat_NTSCDV50", "dvn5"},
        {"KsPixelFormat_PALDV50", "dvp5"},
        {"KsPixelFormat_NTSCDV100_720p", "dvn7"},
        {"KsPixelFormat_PALDV100_720p", "dvp7"},
        {"KsPixelFormat_NTSCDV100_1080i", "dvn1"},
        {"KsPixelFormat_PALDV100_1080i", "dvp1"},
    };
    const auto choices = PixelFormatChoices();
    ASSERT_EQ(choices.size(), 48U);
    ASSERT_EQ(std::size(kRows), 48U);
    for (std::size_t index = 0; index < choices.size(); ++index) {
        std::uint32_t code = 0;
        std::memcpy(&code, kRows[index].bytes, sizeof code);
        EXPECT_EQ(choices[index].constant, kRows[index].name) << index;
        EXPECT_EQ(choices[index].sdkCode, code) << kRows[index].name;
    }
    EXPECT_EQ(choices[0].sdkCode, 0x61726762U) << "bgra";
}

TEST(PixelAspectChoices, HaveThirteenDifferentRatiosNamedAfterTheirConstants)
{
    std::set<std::pair<std::uint32_t, std::uint32_t>> ratios;
    for (const PixelAspectChoice& choice : PixelAspectChoices()) {
        ratios.emplace(choice.ratio.GetNumerator(), choice.ratio.GetDenominator());
        EXPECT_TRUE(choice.constant.starts_with("kPixelAspectRatio_")) << choice.constant;
    }
    EXPECT_EQ(ratios.size(), 13U);
    EXPECT_EQ(PixelAspectChoices()[7].constant, "kPixelAspectRatio_DVCProHD");
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
