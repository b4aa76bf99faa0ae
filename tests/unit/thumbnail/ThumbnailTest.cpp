#include <tessel/thumbnail/Thumbnail.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace {

using qelmediatypes::PixelAspectRatio;
using tessel::thumbnail::Extent;
using tessel::thumbnail::ExtentFor;
using tessel::thumbnail::Pixel;

TEST(ExtentFor, KeepsTheShapeThatViewersSee)
{
    EXPECT_EQ(ExtentFor(1920, 1080, PixelAspectRatio(1, 1), 256), (Extent{256, 144}));
    EXPECT_EQ(ExtentFor(1080, 1920, PixelAspectRatio(1, 1), 256), (Extent{144, 256}));
    // 720 × 16/11 = 1047.3 wide beside 576: 256 × 576 / 1047.3 = 140.8.
    EXPECT_EQ(ExtentFor(720, 576, PixelAspectRatio(16, 11), 256), (Extent{256, 141}));
    // 720 × 10/11 = 654.5 wide beside 480: 256 × 480 / 654.5 = 187.7.
    EXPECT_EQ(ExtentFor(720, 480, PixelAspectRatio(10, 11), 256), (Extent{256, 188}));
}

TEST(ExtentFor, NeverGrowsAPictureAndNeverLosesASide)
{
    EXPECT_EQ(ExtentFor(64, 48, PixelAspectRatio(1, 1), 256), (Extent{64, 48}));
    EXPECT_EQ(ExtentFor(100'000, 1, PixelAspectRatio(1, 1), 256), (Extent{256, 1}));
    EXPECT_EQ(ExtentFor(64, 48, PixelAspectRatio(0, 0), 256), (Extent{64, 48}));
}

tessel::exporting::Picture Ramp(std::int32_t width, std::int32_t height)
{
    auto picture = tessel::exporting::AllocatePicture(tessel::exporting::PictureLayout::Rgb24, width, height);
    for (std::int32_t y = 0; y < height; ++y) {
        for (std::int32_t x = 0; x < width; ++x) {
            std::byte* const pixel = picture.planes[0] + y * picture.rowBytes[0] + std::ptrdiff_t{3} * x;
            pixel[0] = static_cast<std::byte>(x);
            pixel[1] = static_cast<std::byte>(y);
            pixel[2] = std::byte{200};
        }
    }
    return picture;
}

TEST(Scaled, APixelIsTheMeanOfWhatItCovers)
{
    auto image = tessel::thumbnail::Scaled(Ramp(12, 6), {4, 2});
    // Columns 3x .. 3x + 2 have the mean 3x + 1, rows 3y .. 3y + 2 the mean 3y + 1.
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(image.At(x, y),
                      (Pixel{static_cast<std::uint8_t>(3 * x + 1), static_cast<std::uint8_t>(3 * y + 1), 200}));
        }
    }
}

TEST(Scaled, AtItsOwnSizeItIsThePicture)
{
    auto image = tessel::thumbnail::Scaled(Ramp(5, 3), {5, 3});
    EXPECT_EQ(image.At(4, 2), (Pixel{4, 2, 200}));
    EXPECT_EQ(image.At(0, 0), (Pixel{0, 0, 200}));
}

} // namespace
