#include <tessel/export/convert/Picture.h>
#include <tessel/export/convert/V210Packing.h>
#include <tessel/view/model/Inspector.h>

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tessel::view {
namespace {

using BR::PixelFormat;
using exporting::FrameView;

FrameView ViewOver(PixelFormat format, int width, int height, const void* top, std::ptrdiff_t rowBytes)
{
    return {format, width, height, static_cast<const std::byte*>(top), rowBytes, nullptr};
}

TEST(Inspector, ReadsBgraAndTellsItsPlace)
{
    const std::array<std::uint8_t, 24> memory{1,  2,  3,  4,  5,  6,  7,  8,   0, 0, 0, 0,
                                              11, 12, 13, 14, 15, 16, 17, 255, 0, 0, 0, 0};
    const PixelReading pixel = ReadPixel(ViewOver(PixelFormat::BGRA_4444_8u, 2, 2, memory.data(), 12), 1, 1);
    ASSERT_EQ(pixel.components.size(), 4U);
    EXPECT_EQ(pixel.components[0].name, "R'");
    EXPECT_EQ(pixel.components[0].code, 17);
    EXPECT_EQ(pixel.components[2].code, 15);
    EXPECT_EQ(pixel.components[3].value, 1.0);
    EXPECT_EQ(pixel.offset, 16U);
    EXPECT_EQ(pixel.components[0].offset, 18U);
    EXPECT_EQ(TextOf(pixel),
              "1, 1   R' 17 (0.0667)  G' 16 (0.0627)  B' 15 (0.0588)  A 255 (1.0000)   byte 16: 0f 10 11 ff");
}

TEST(Inspector, BothPixelsOfAPairShareTheirChroma)
{
    const std::array<std::uint8_t, 4> memory{44, 162, 142, 16}; // Cb Y Cr Y: yellow, then black, BT.601
    const FrameView frame = ViewOver(PixelFormat::UYVY_422_8u_601, 2, 1, memory.data(), 4);
    const PixelReading left = ReadPixel(frame, 0, 0);
    const PixelReading right = ReadPixel(frame, 1, 0);
    EXPECT_EQ(left.components[0].code, 162);
    EXPECT_EQ(right.components[0].code, 16);
    EXPECT_EQ(right.components[0].value, 0.0);
    EXPECT_EQ(left.components[1].code, 44);
    EXPECT_EQ(right.components[1].code, 44);
    EXPECT_EQ(right.components[2].code, 142);
    EXPECT_EQ(right.components[0].offset, 3U);
}

TEST(Inspector, FindsEverySampleOfV210)
{
    std::vector<std::uint16_t> luma(48);
    std::vector<std::uint16_t> cb(24);
    std::vector<std::uint16_t> cr(24);
    for (std::uint16_t i = 0; i < 48; ++i) {
        luma[i] = static_cast<std::uint16_t>(100 + i);
        cb[i / 2] = static_cast<std::uint16_t>(300 + i / 2);
        cr[i / 2] = static_cast<std::uint16_t>(600 + i / 2);
    }
    std::vector<std::byte> packed(static_cast<std::size_t>(exporting::V210RowBytes(48)));
    exporting::PackV210Row(luma.data(), cb.data(), cr.data(), 48, packed.data());
    const FrameView frame = ViewOver(PixelFormat::V210_422_10u_709, 48, 1, packed.data(), 128);
    for (int x = 0; x < 48; ++x) {
        const PixelReading pixel = ReadPixel(frame, x, 0);
        EXPECT_EQ(pixel.components[0].code, 100 + x);
        EXPECT_EQ(pixel.components[1].code, 300 + x / 2);
        EXPECT_EQ(pixel.components[2].code, 600 + x / 2);
        EXPECT_EQ(pixel.offset, static_cast<std::size_t>(x / 6 * 16));
    }
}

TEST(Inspector, FloatsAreShownAsTheyAreAndBottomUpMemoryIsCountedFromItsBeginning)
{
    // Two rows of one pixel in BGRA float; the host keeps these bottom row first.
    const std::array<float, 8> memory{0.25F, 0.5F, 2.0F, 1.0F, -1.0F, 0.0F, 0.0F, 1.0F};
    const FrameView frame = ViewOver(PixelFormat::BGRA_4444_32f, 1, 2, &memory[4], -16);
    const PixelReading bottom = ReadPixel(frame, 0, 1);
    EXPECT_TRUE(bottom.isBottomUp);
    EXPECT_EQ(bottom.offset, 0U);
    EXPECT_EQ(bottom.components[0].value, 2.0);
    EXPECT_EQ(bottom.components[2].value, 0.25);
    const PixelReading top = ReadPixel(frame, 0, 0);
    EXPECT_EQ(top.offset, 16U);
    EXPECT_EQ(top.components[2].value, -1.0);
}

} // namespace
} // namespace tessel::view
