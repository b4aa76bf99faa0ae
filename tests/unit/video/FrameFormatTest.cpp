#include <ImporterTessel/video/FrameFormat.h>
#include <kestrel/brindle/PixelFormat.h>
#include <kestrel/qelcore/FourCharacterCode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <utility>

using namespace ImporterTessel;
using qelcore::FourBytesCode;

namespace {

TEST(FrameFormat, EveryHostFormatHasItsPaintedOne)
{
    struct Row {
        const char (&clip)[5];
        const char (&frame)[5];
        std::uint32_t paintCode;
    };
    // As the image library's codes are laid out: 0x001 Y'CbCr, 0x002 swapped order, 0x004 four components,
    // 0x008 8-bit, 0x010 4:2:2, 0x040 premultiplied, 0x080 no alpha, 0x100 float, 0x200 v210, 0x400 linear,
    // 0x800 BT.709.
    const Row rows[] = {
        {"bgra", "bgra", 0x00C},
        {"vuya", "vuya", 0x00D},
        {"VUYA", "VUYA", 0x80D},
        {"argb", "argb", 0x00E},
        {"bgrx", "bgrx", 0x08C},
        {"vuyx", "vuyx", 0x08D},
        {"vux7", "vux7", 0x88D},
        {"xrgb", "xrgb", 0x08E},
        {"bgrp", "bgrp", 0x04C},
        {"vuyp", "vuyp", 0x04D},
        {"vup7", "vup7", 0x84D},
        {"prgb", "prgb", 0x04E},
        {"BGra", "BGra", 0x104},
        {"VUya", "VUya", 0x105},
        {"vUYa", "vUYa", 0x905},
        {"ARgb", "ARgb", 0x106},
        {"BGrx", "BGrx", 0x184},
        {"VUyx", "VUyx", 0x185},
        {"VUx7", "VUx7", 0x985},
        {"XRgb", "XRgb", 0x186},
        {"BGrp", "BGrp", 0x144},
        {"VUyp", "VUyp", 0x145},
        {"VUp7", "VUp7", 0x945},
        {"PRgb", "PRgb", 0x146},
        {"yuy2", "yuy2", 0x01B},
        {"yuy3", "yuy3", 0x81B},
        {"uyvy", "uyvy", 0x019},
        {"uyv7", "uyv7", 0x819},
        {"v210", "v210", 0x211},
        {"v211", "v211", 0xA11},
        {"BGaL", "BGaL", 0x504},
        {"BGpL", "BGpL", 0x544},
        {"BGxL", "BGxL", 0x584},
        {"ARgL", "ARgL", 0x506},
        {"PRgL", "PRgL", 0x546},
        {"XRgL", "XRgL", 0x586},
        // Planar and high-definition DV are painted as VUYA 709, standard-definition DV as BGRA.
        {"yv12", "VUYA", 0x80D},
        {"yvi2", "VUYA", 0x80D},
        {"yv17", "VUYA", 0x80D},
        {"yvi7", "VUYA", 0x80D},
        {"dvn2", "bgra", 0x00C},
        {"dvp2", "bgra", 0x00C},
        {"dvn5", "bgra", 0x00C},
        {"dvp5", "bgra", 0x00C},
        {"dvn7", "VUYA", 0x80D},
        {"dvp7", "VUYA", 0x80D},
        {"dvn1", "VUYA", 0x80D},
        {"dvp1", "VUYA", 0x80D},
    };
    ASSERT_EQ(std::size(rows), BR::AllPixelFormats().size());
    for (const Row& row : rows) {
        const FrameFormat format = FrameFormatOf(FourBytesCode(row.clip));
        EXPECT_EQ(format.hostCode, FourBytesCode(row.frame)) << row.clip;
        EXPECT_EQ(format.paintCode, row.paintCode) << row.clip;
    }
}

TEST(FrameFormat, AnUnknownFormatIsZeroInBothNumberings)
{
    for (const std::uint32_t code : {0U, 1U, 0xFFFFFFFFU, 0x20202020U}) {
        EXPECT_EQ(FrameFormatOf(code).paintCode, 0U);
        EXPECT_EQ(FrameFormatOf(code).hostCode, 0U);
    }
}

// Also for codes that are no format, whose bits count one by one.
TEST(NormalizedPaintCode, GoesByKindAndByThreeBits)
{
    const std::pair<std::uint32_t, std::uint32_t> rows[] = {
        // Kind 0 is painted as it is.
        {0x00000039, 0x00000039},
        {0x00000FFF, 0x00000FFF},
        {0x00000000, 0x00000000},
        // Kinds 9 to 14 with the bits of DV and without that of BT.709 become BGRA, those around them not.
        {0x01000039, 0x80D},
        {0x08000039, 0x80D},
        {0x09000039, 0x00C},
        {0x0A000039, 0x00C},
        {0x0B000039, 0x00C},
        {0x0C000039, 0x00C},
        {0x0D000039, 0x00C},
        {0x0E000039, 0x00C},
        {0x0F000039, 0x80D},
        {0x10000039, 0x80D},
        {0xFF000039, 0x80D},
        // Without Y'CbCr, without one of the two subsampling bits, with BT.709.
        {0x09000038, 0x80D},
        {0x09000029, 0x80D},
        {0x09000019, 0x80D},
        {0x09000839, 0x80D},
        {0x0E000839, 0x80D},
        // Other bits do not count.
        {0x09000031, 0x00C},
        {0x0E0007FF, 0x00C},
        {0x09000FFF, 0x80D},
        {0x09000000, 0x80D},
    };
    for (const auto& [code, expected] : rows) {
        EXPECT_EQ(NormalizedPaintCode(code), expected) << std::hex << code;
    }
}

} // namespace
