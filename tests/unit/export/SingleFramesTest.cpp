/// The frame converter with unusual frames: one pixel, odd values, incomplete groups.

#include "PictureModel.h"

#include <tessel/export/ExportError.h>
#include <tessel/export/convert/FrameConverter.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

namespace tessel::exporting {
namespace {

TEST(FrameConverter, FrameThatAlreadyIsThePictureIsNotCopied)
{
    const struct {
        BR::PixelFormat format;
        PictureLayout layout;
        const char* name;
    } kSame[] = {{BR::PixelFormat::BGRA_4444_8u, PictureLayout::Bgra, "BGRA_4444_8u"},
                 {BR::PixelFormat::PRGB_4444_8u, PictureLayout::Argb, "PRGB_4444_8u"},
                 {BR::PixelFormat::BGRX_4444_8u, PictureLayout::Bgr0, "BGRX_4444_8u"},
                 {BR::PixelFormat::XRGB_4444_8u, PictureLayout::Zrgb, "XRGB_4444_8u"},
                 {BR::PixelFormat::UYVY_422_8u_709, PictureLayout::Uyvy, "UYVY_422_8u_709"},
                 {BR::PixelFormat::YUYV_422_8u_709, PictureLayout::Yuyv, "YUYV_422_8u_709"},
                 {BR::PixelFormat::V210_422_10u_709, PictureLayout::V210, "V210_422_10u_709"}};
    for (const auto& same : kSame) {
        const RandomFrame frame(same.format, FormatModel(same.name), 12, 4, 1);
        const Picture picture = FrameConverter({same.format, same.layout, 12, 4, {}, {}}).Convert(frame.view);
        EXPECT_EQ(picture.planes[0], frame.view.top) << same.name;
        EXPECT_EQ(picture.rowBytes[0], frame.view.rowBytes) << same.name;
    }
}

TEST(FrameConverter, PictureKeepsTheFrameItSharesAlive)
{
    const RandomFrame frame(BR::PixelFormat::BGRA_4444_8u, FormatModel("BGRA_4444_8u"), 2, 2, 0);
    auto owner = std::make_shared<int>(0);
    FrameView view = frame.view;
    view.owner = owner;
    Picture picture = FrameConverter({view.format, PictureLayout::Bgra, 2, 2, {}, {}}).Convert(view);
    view.owner.reset();
    EXPECT_EQ(owner.use_count(), 2);
    picture = {};
    EXPECT_EQ(owner.use_count(), 1);
}

/// A one-pixel float BGRA frame.
struct FloatPixel {
    std::array<float, 4> bgra;

    [[nodiscard]] Picture To(PictureLayout layout,
                             BR::PixelFormat format = BR::PixelFormat::BGRA_4444_32f) const
    {
        const FrameView view{format, 1, 1, reinterpret_cast<const std::byte*>(bgra.data()), 16, nullptr};
        return FrameConverter({format, layout, 1, 1, {}, {}}).Convert(view);
    }
};

TEST(FrameConverter, FloatTargetsKeepTheBitsOfEverySampleNotANumberIncluded)
{
    const std::array<std::uint32_t, 4> bits{0x7FA12345, 0xFF800000, 0x00000001,
                                            0x80000000}; // NaN, -inf, tiny, -0
    FloatPixel pixel{};
    std::memcpy(pixel.bgra.data(), bits.data(), sizeof bits);
    const Picture picture = pixel.To(PictureLayout::Gbrapf32);
    const std::array<std::size_t, 4> planeOf{1, 0, 2, 3}; // B, G, R, A
    for (std::size_t i = 0; i < 4; ++i) {
        std::uint32_t got = 0;
        std::memcpy(&got, picture.planes[planeOf[i]], 4);
        EXPECT_EQ(got, bits[i]) << i;
    }
}

TEST(FrameConverter, LinearLightStaysLinearInFloatTargets)
{
    const FloatPixel pixel{{0.25F, 0.5F, -0.125F, 1.0F}};
    const Picture picture = pixel.To(PictureLayout::Gbrpf32, BR::PixelFormat::BGRX_4444_32f_Linear);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[0]), 0.5F);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[1]), 0.25F);
    EXPECT_EQ(*reinterpret_cast<const float*>(picture.planes[2]), -0.125F);
}

TEST(FrameConverter, SixteenBitsAreTheNearestCodes)
{
    // 65535 times the float 0.9 is 58981.4984: a sum in floats, with a half added for rounding, is 58982
    // already.
    const Picture picture = FloatPixel{{0.9F, 0.9F, 0.9F, 0.9F}}.To(PictureLayout::Rgba64);
    for (std::size_t component = 0; component < 4; ++component) {
        std::uint16_t code = 0;
        std::memcpy(&code, picture.planes[0] + 2 * component, 2);
        EXPECT_EQ(code, 58981) << component;
    }
}

TEST(FrameConverter, NumbersThatAreNoneAndInfinitiesGiveCodesInRange)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    const Picture picture = FloatPixel{{none, infinity, -infinity, none}}.To(PictureLayout::Rgba);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][0]), 0);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][1]), 255);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][2]), 0);
    for (const LayoutModel& target : kLayoutModels) {
        static_cast<void>(FloatPixel{{none, infinity, -infinity, none}}.To(target.layout));
    }
}

TEST(FrameConverter, FillerBytesAreSet)
{
    const Picture picture = FloatPixel{{0.0F, 0.0F, 0.0F, 0.0F}}.To(PictureLayout::Bgr0);
    EXPECT_EQ(std::to_integer<int>(picture.planes[0][3]), 255);
}

TEST(FrameConverter, V210RowsArePaddedWithZerosToWholeGroupsOf48)
{
    const RandomFrame frame(BR::PixelFormat::UYVY_422_8u_709, FormatModel("UYVY_422_8u_709"), 50, 2, 0);
    const Picture picture =
        FrameConverter({frame.view.format, PictureLayout::V210, 50, 2, {}, {}}).Convert(frame.view);
    ASSERT_EQ(V210RowBytes(50), 256);
    for (int y = 0; y < 2; ++y) {
        // 50 pixels are 8 groups of 6 and 2 pixels: samples U Y V Y of a ninth group, 1 1/3 words.
        for (std::ptrdiff_t at = 8 * 16 + 8; at < 256; ++at) {
            EXPECT_EQ(std::to_integer<int>(picture.planes[0][y * picture.rowBytes[0] + at]), 0) << at;
        }
    }
}

TEST(FrameConverter, FormatsThatFramesNeverHaveAreRefused)
{
    EXPECT_THROW(FrameConverter({BR::PixelFormat::PALDV25, PictureLayout::Bgra, 720, 576, {}, {}}),
                 ExportError);
    EXPECT_THROW(FrameConverter({BR::PixelFormat::Unknown, PictureLayout::Bgra, 720, 576, {}, {}}),
                 ExportError);
}

} // namespace
} // namespace tessel::exporting
