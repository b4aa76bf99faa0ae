#include <tessel/view/model/ScreenConverter.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>

namespace tessel::view {
namespace {

using BR::PixelFormat;
using exporting::FrameView;

/// Random pixels in which some rows are repeated, next to each other and far apart.
FrameView Frame(PixelFormat format, int width, int height, bool isBottomUp)
{
    const std::size_t rowBytes = (exporting::BytesOfRow(format, width) + 127) / 128 * 128;
    const auto bytes = std::make_shared<std::vector<std::byte>>(rowBytes * static_cast<std::size_t>(height));
    std::mt19937 random(7);
    const bool isFloat = exporting::KindOf(format).storage == exporting::Storage::InterleavedF;
    for (int y = 0; y < height; ++y) {
        std::byte* const row = bytes->data() + static_cast<std::size_t>(y) * rowBytes;
        if (y > 3 && random() % 3 != 0) {
            std::memcpy(row, bytes->data() + random() % static_cast<unsigned>(y) * rowBytes, rowBytes);
            continue;
        }
        for (std::size_t at = 0; at < rowBytes; at += 4) {
            const float value = static_cast<float>(random() % 1400) / 1000.0F - 0.2F;
            const auto word = static_cast<std::uint32_t>(random());
            std::memcpy(row + at, isFloat ? static_cast<const void*>(&value) : &word, 4);
        }
    }
    const auto step = static_cast<std::ptrdiff_t>(rowBytes);
    return {.format = format,
            .width = width,
            .height = height,
            .top = bytes->data() + (isBottomUp ? (height - 1) * step : 0),
            .rowBytes = isBottomUp ? -step : step,
            .owner = bytes};
}

TEST(ScreenConverter, FewerRowsAreThoseOfTheWholePicture)
{
    for (const PixelFormat format : {PixelFormat::V210_422_10u_709, PixelFormat::BGRA_4444_32f}) {
        const FrameView frame = Frame(format, 48, 77, format == PixelFormat::BGRA_4444_32f);
        ScreenConverter converter(format, 48, 77);
        const exporting::Picture whole = converter.Convert(frame);
        for (const int step : {2, 3, 77, 100}) {
            const exporting::Picture some = converter.Convert(frame, step);
            ASSERT_EQ(some.height, (77 + step - 1) / step);
            for (int y = 0; y < some.height; ++y) {
                ASSERT_EQ(std::memcmp(some.planes[0] + y * some.rowBytes[0],
                                      whole.planes[0] + y * step * whole.rowBytes[0], std::size_t{4} * 48),
                          0)
                    << step << ' ' << y;
            }
        }
    }
}

TEST(ScreenConverter, GivesWhatTheConversionOfWholeFramesGives)
{
    for (const PixelFormat format :
         {PixelFormat::V210_422_10u_709, PixelFormat::UYVY_422_8u_601, PixelFormat::YUYV_422_8u_709,
          PixelFormat::VUYA_4444_8u_709, PixelFormat::ARGB_4444_8u, PixelFormat::BGRA_4444_32f,
          PixelFormat::BGRA_4444_32f_Linear, PixelFormat::VUYA_4444_32f, PixelFormat::BGRA_4444_8u,
          PixelFormat::BGRX_4444_8u}) {
        for (const int width : {48, 51}) {
            const FrameView frame = Frame(format, width, 77, format == PixelFormat::BGRA_4444_32f);
            exporting::FrameConverter whole({.source = format,
                                             .target = exporting::PictureLayout::Bgra,
                                             .width = width,
                                             .height = 77,
                                             .coding = {}});
            const exporting::Picture expected = whole.Convert(frame);
            ScreenConverter converter(format, width, 77);
            const exporting::Picture screen = converter.Convert(frame);
            for (int y = 0; y < 77; ++y) {
                for (int i = 0; i < 4 * width; ++i) {
                    if (i % 4 != 3) {
                        ASSERT_EQ(screen.planes[0][y * screen.rowBytes[0] + i],
                                  expected.planes[0][y * expected.rowBytes[0] + i])
                            << static_cast<int>(format) << ' ' << width << ' ' << y << ' ' << i;
                    }
                }
            }
        }
    }
}

TEST(DistinctRows, FindRepeatedRowsWhereverTheyAre)
{
    FrameView frame = Frame(PixelFormat::BGRA_4444_8u, 8, 6, false);
    auto* const bytes = const_cast<std::byte*>(frame.top);
    const int contents[] = {5, 6, 5, 6, 7, 5};
    for (int y = 0; y < 6; ++y) {
        std::memset(bytes + y * frame.rowBytes, contents[y], 32);
        bytes[y * frame.rowBytes + 32] = static_cast<std::byte>(y); // behind the row's end
    }
    DistinctRows rows;
    rows.Find(frame, 1);
    EXPECT_EQ(rows.Firsts(), (std::vector<int>{0, 1, 4}));
    EXPECT_EQ(rows.Counts(), (std::vector<std::uint32_t>{3, 2, 1}));
    EXPECT_EQ(rows.Kinds(), (std::vector<int>{0, 1, 0, 1, 2, 0}));
    rows.Find(frame, 2);
    EXPECT_EQ(rows.Kinds(), (std::vector<int>{0, 0, 1}));
}

} // namespace
} // namespace tessel::view
