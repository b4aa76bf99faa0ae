#include <kestrel/brindle/PixelFormat.h>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using namespace BR;

/// The code's four bytes in memory order.
std::string BytesOf(std::uint32_t code)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(code >> shift & 0xFF);
    }
    return bytes;
}

// The codes in the host's order, eight to a line.
constexpr std::string_view kCodes = "bgra vuya VUYA argb bgrx vuyx vux7 xrgb "
                                    "bgrp vuyp vup7 prgb BGra VUya vUYa ARgb "
                                    "BGrx VUyx VUx7 XRgb BGrp VUyp VUp7 PRgb "
                                    "yuy2 yuy3 uyvy uyv7 v210 v211 BGaL BGpL "
                                    "BGxL ARgL PRgL XRgL yv12 yvi2 yv17 yvi7 "
                                    "dvn2 dvp2 dvn5 dvp5 dvn7 dvp7 dvn1 dvp1 ";

TEST(PixelFormat, ListHasTheCodesInTheHostsOrder)
{
    std::string codes;
    for (const PixelFormatInfo& info : AllPixelFormats()) {
        codes += BytesOf(info.sdkCode) + " ";
    }
    EXPECT_EQ(codes, kCodes);
}

TEST(PixelFormat, NamesAndCodesAreUnique)
{
    std::set<std::string_view> names;
    std::set<std::uint32_t> codes;
    for (const PixelFormatInfo& info : AllPixelFormats()) {
        names.insert(info.constant);
        codes.insert(info.sdkCode);
        EXPECT_EQ(info.constant.substr(0, 14), "KsPixelFormat_");
    }
    EXPECT_EQ(names.size(), 48U);
    EXPECT_EQ(codes.size(), 48U);
}

TEST(PixelFormat, NamesAgreeWithTheFormatsBesideThem)
{
    const auto nameOf = [](PixelFormat format) {
        return AllPixelFormats()[static_cast<std::size_t>(format)].constant;
    };
    EXPECT_EQ(nameOf(PixelFormat::BGRA_4444_8u), "KsPixelFormat_BGRA_4444_8u");
    EXPECT_EQ(nameOf(PixelFormat::PRGB_4444_8u), "KsPixelFormat_PRGB_4444_8u");
    EXPECT_EQ(nameOf(PixelFormat::PRGB_4444_32f), "KsPixelFormat_PRGB_4444_32f");
    EXPECT_EQ(nameOf(PixelFormat::V210_422_10u_709), "KsPixelFormat_V210_422_10u_709");
    EXPECT_EQ(nameOf(PixelFormat::XRGB_4444_32f_Linear), "KsPixelFormat_XRGB_4444_32f_Linear");
    EXPECT_EQ(nameOf(PixelFormat::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709),
              "KsPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709");
    EXPECT_EQ(nameOf(PixelFormat::PALDV100_1080i), "KsPixelFormat_PALDV100_1080i");
}

TEST(PixelFormat, BothNumberingsConvertIntoEachOther)
{
    for (const PixelFormatInfo& info : AllPixelFormats()) {
        EXPECT_EQ(SDKToBEPixelFormat(info.sdkCode), info.format) << info.constant;
        EXPECT_EQ(BEToSDKPixelFormat(info.format), info.sdkCode) << info.constant;
    }
}

TEST(PixelFormat, OtherNumbersAreUnknown)
{
    for (const std::uint32_t code : {0U, 1U, 0x5A5A5A5AU, 0xFFFFFFFFU}) {
        EXPECT_EQ(SDKToBEPixelFormat(code), PixelFormat::Unknown) << code;
    }
    for (const int number : {-1, 48, -2147483647 - 1, 2147483647}) {
        EXPECT_EQ(BEToSDKPixelFormat(static_cast<PixelFormat>(number)), 0U) << number;
    }
}

} // namespace
