// Each code follows from the format's name.
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

using namespace pixmill;

namespace {

/// The bits that the design of the codes gives to a name like "KsPixelFormat_VUYX_4444_8u_709".
std::uint32_t BitsFromName(std::string_view constant)
{
    const std::string_view name = constant.substr(constant.find('_') + 1);
    const std::string_view order = name.substr(0, 4);
    const auto has = [&](std::string_view part) { return name.find(part) != name.npos; };
    std::uint32_t bits = 0;
    if (has("_8u")) {
        bits |= 0x008;
    }
    if (has("_32f")) {
        bits |= 0x100;
    }
    if (has("_4444_")) {
        bits |= 0x004;
    }
    if (has("_709")) {
        bits |= 0x800;
    }
    if (has("_Linear")) {
        bits |= 0x400;
    }
    if (has("_422_")) {
        bits |= 0x011;
    }
    if (order == "V210") {
        bits |= 0x200;
    }
    if (order.substr(0, 3) == "VUY") {
        bits |= 0x001;
    }
    if (order == "YUYV" || order.substr(1) == "RGB") {
        bits |= 0x002;
    }
    if (has("_4444_") && order.find('P') != order.npos) {
        bits |= 0x040;
    }
    if (has("_4444_") && order.find('X') != order.npos) {
        bits |= 0x080;
    }
    return bits;
}

bool IsPlanarOrDv(std::string_view constant)
{
    return constant.find("420") != constant.npos || constant.find("DV") != constant.npos;
}

} // namespace

TEST(PixelFormatCodes, PaintableCodesFollowFromTheNames)
{
    int paintable = 0;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        EXPECT_EQ(IsPaintable(code), !IsPlanarOrDv(info.constant)) << info.constant;
        if (IsPaintable(code)) {
            ++paintable;
            EXPECT_EQ(code, BitsFromName(info.constant)) << info.constant;
        }
    }
    EXPECT_EQ(paintable, 36);
}

TEST(PixelFormatCodes, TheThreeKnownNumbersStand)
{
    EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(BR::PixelFormat::BGRA_4444_8u), 12U);
    EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(BR::PixelFormat::BGRA_4444_32f), 260U);
    EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(BR::PixelFormat::VUYA_4444_8u_709), 2061U);
}

TEST(PixelFormatCodes, PlanarAndDvCodesHaveTheirKindInTheTopByte)
{
    using F = BR::PixelFormat;
    const std::pair<F, std::uint32_t> known[] = {
        {F::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601, 0x01000029},
        {F::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, 0x02000029},
        {F::YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709, 0x01000829},
        {F::YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, 0x02000829},
        {F::NTSCDV25, 0x09000039},
        {F::PALDV25, 0x0A000039},
        {F::NTSCDV50, 0x0B000039},
        {F::PALDV50, 0x0C000039},
        {F::NTSCDV100_720p, 0x0D000839},
        {F::PALDV100_720p, 0x0E000839},
        {F::NTSCDV100_1080i, 0x0F000839},
        {F::PALDV100_1080i, 0x10000839},
    };
    for (const auto& [format, code] : known) {
        EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(format), code) << std::hex << code;
    }
}

TEST(PixelFormatCodes, EveryCodeLeadsBackToItsFormatAlone)
{
    std::set<std::uint32_t> codes;
    for (const BR::PixelFormatInfo& info : BR::AllPixelFormats()) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(info.format);
        EXPECT_EQ(PM_PMPixelFormatToQELPixelFormat(code), info.format) << info.constant;
        codes.insert(code);
    }
    EXPECT_EQ(codes.size(), 48U);
    for (std::uint32_t code = 0; code < 0x2000; ++code) {
        const bool isKnown = codes.count(code) != 0;
        EXPECT_EQ(IsPaintable(code), isKnown) << code;
        EXPECT_EQ(PM_PMPixelFormatToQELPixelFormat(code) != BR::PixelFormat::Unknown, isKnown) << code;
    }
}

TEST(PixelFormatCodes, UnknownIsNoCodeAndNoCodeIsUnknown)
{
    EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(BR::PixelFormat::Unknown), 0U);
    EXPECT_EQ(PM_QELPixelFormatToPMPixelFormat(static_cast<BR::PixelFormat>(48)), 0U);
    EXPECT_EQ(PM_PMPixelFormatToQELPixelFormat(0), BR::PixelFormat::Unknown);
    EXPECT_FALSE(IsPaintable(0));
    EXPECT_FALSE(IsPaintable(0xFFFFFFFF));
}

TEST(PixelFormatCodes, RowsAreMeasuredInWholeGroups)
{
    EXPECT_EQ(BytesPerRow(kBGRA8, 1920), 7680U);
    EXPECT_EQ(BytesPerRow(kBGRAFloat, 3), 48U);
    EXPECT_EQ(BytesPerRow(0x19, 5), 12U);  // three pairs
    EXPECT_EQ(BytesPerRow(0x211, 7), 32U); // two groups of six
    EXPECT_EQ(BytesPerRow(0x211, 1920), 5120U);
    EXPECT_EQ(BytesPerRow(0x211, 0), 0U);
    EXPECT_EQ(BytesPerRow(kBGRAFloat, 0xFFFFFFFF), 0xFFFFFFFFULL * 16); // beyond 32 bits
    EXPECT_EQ(BytesPerRow(0x01000029, 1920), 0U);
}
