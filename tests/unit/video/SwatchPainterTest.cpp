#include <ImporterTessel/video/SwatchPainter.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

using namespace ImporterTessel;

namespace {

constexpr std::uint32_t kWidth = 53;
constexpr std::uint32_t kHeight = 31;
constexpr std::size_t kStep = kWidth * 16 + 48;
constexpr std::size_t kGuard = 4096;
constexpr std::byte kUntouched{0x5A};

/// Memory with guards around a picture of BGRA float.
struct Canvas {
    std::vector<std::byte> memory = std::vector<std::byte>(2 * kGuard + kStep * kHeight, kUntouched);

    FrameView View(bool backwards)
    {
        return {.pixels = memory.data() + kGuard + (backwards ? kStep * (kHeight - 1) : 0),
                .rowBytes = backwards ? -static_cast<std::int32_t>(kStep) : static_cast<std::int32_t>(kStep),
                .paintCode = 260,
                .width = kWidth,
                .height = kHeight};
    }
};

/// The plain way: swatch by swatch, pixel by pixel.
void PaintSlowly(const Coordinates& coordinates, PixelRange columns, PixelRange rows,
                 const std::vector<float>& colors, const FrameView& view)
{
    const auto border = [](std::uint32_t a, std::uint32_t b) { return a + (b - a) / 2; };
    const auto range = [&](const std::vector<std::int32_t>& list, std::size_t k, PixelRange outer) {
        PixelRange result = outer;
        if (list.size() > 1 && k > 0) {
            result.start = border(static_cast<std::uint32_t>(list[k - 1]), static_cast<std::uint32_t>(list[k]));
        }
        if (list.size() > 1 && k + 1 < list.size()) {
            result.end = border(static_cast<std::uint32_t>(list[k]), static_cast<std::uint32_t>(list[k + 1]));
        }
        return result;
    };
    const std::size_t ny = coordinates.yCoordinates.size();
    for (std::size_t j = 0; j < ny; ++j) {
        const PixelRange y = range(coordinates.yCoordinates, j, rows);
        for (std::size_t i = 0; i < coordinates.xCoordinates.size(); ++i) {
            const PixelRange x = range(coordinates.xCoordinates, i, columns);
            const float* triple = colors.data() + (ny * i + j) * 3;
            const std::array<float, 4> pixel{triple[2], triple[1], triple[0], 1.0F};
            for (std::uint64_t r = y.start; r < y.end && r < view.height; ++r) {
                for (std::uint64_t c = x.start; c < x.end && c < view.width; ++c) {
                    std::memcpy(view.pixels + static_cast<std::int64_t>(r) * view.rowBytes + c * 16,
                                pixel.data(), 16);
                }
            }
        }
    }
}

std::vector<float> DistinctColors(std::size_t swatches)
{
    std::vector<float> colors;
    for (std::size_t i = 0; i < swatches * 3; ++i) {
        colors.push_back(static_cast<float>(i) * 0.37F - 4.0F);
    }
    return colors;
}

TEST(SwatchPainter, AscendingCentresHaveBordersHalfWayBetween)
{
    Canvas canvas;
    const Coordinates coordinates{.xCoordinates = {10, 21}, .yCoordinates = {5, 9, 20}};
    const auto colors = DistinctColors(6);
    const FrameView view = canvas.View(false);
    ASSERT_EQ(PaintSwatches(coordinates, {0, kWidth}, {2, 30}, colors, view), kSwatchesPainted);
    const auto swatchAt = [&](std::uint32_t x, std::uint32_t y) {
        std::array<float, 4> pixel{};
        std::memcpy(pixel.data(), view.Row(y) + x * 16, 16);
        for (std::size_t i = 0; i < 6; ++i) {
            if (pixel == std::array<float, 4>{colors[i * 3 + 2], colors[i * 3 + 1], colors[i * 3], 1.0F}) {
                return static_cast<int>(i);
            }
        }
        return -1;
    };
    // Columns part at 10 + 11/2 = 15, rows at 5 + 4/2 = 7 and 9 + 11/2 = 14; swatch = column × 3 + row.
    EXPECT_EQ(swatchAt(0, 1), -1);
    EXPECT_EQ(swatchAt(0, 2), 0);
    EXPECT_EQ(swatchAt(14, 6), 0);
    EXPECT_EQ(swatchAt(15, 6), 3);
    EXPECT_EQ(swatchAt(14, 7), 1);
    EXPECT_EQ(swatchAt(15, 13), 4);
    EXPECT_EQ(swatchAt(14, 14), 2);
    EXPECT_EQ(swatchAt(52, 29), 5);
    EXPECT_EQ(swatchAt(52, 30), -1);
}

TEST(SwatchPainter, OneCoordinateCoversItsWholeRange)
{
    Canvas canvas, expected;
    const Coordinates coordinates{.xCoordinates = {2000000000}, .yCoordinates = {-3}};
    const std::vector<float> colors{0.1F, 0.2F, 0.3F};
    ASSERT_EQ(PaintSwatches(coordinates, {3, 40}, {4, 20}, colors, canvas.View(false)), kSwatchesPainted);
    const FrameView view = expected.View(false);
    const std::array<float, 4> pixel{0.3F, 0.2F, 0.1F, 1.0F};
    for (std::uint32_t row = 4; row < 20; ++row) {
        for (std::uint32_t column = 3; column < 40; ++column) {
            std::memcpy(view.Row(row) + column * 16, pixel.data(), 16);
        }
    }
    EXPECT_EQ(canvas.memory, expected.memory);
}

TEST(SwatchPainter, OtherFormatsAreRefusedAndUntouched)
{
    for (const std::uint32_t code : {12U, 0U, 261U, 0x106U, 2061U}) {
        Canvas canvas;
        FrameView view = canvas.View(false);
        view.paintCode = code;
        EXPECT_EQ(PaintSwatches({.xCoordinates = {1}, .yCoordinates = {1}}, {0, 9}, {0, 9},
                                std::vector<float>{1, 1, 1}, view),
                  -1000);
        EXPECT_EQ(canvas.memory, Canvas{}.memory);
    }
}

TEST(SwatchPainter, AnyListsPaintWhatSwatchBySwatchPaintingWouldAndNothingOutside)
{
    for (std::uint32_t seed = 0; seed < 400; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
        const auto coordinate = [&]() -> std::int32_t {
            switch (below(6)) {
            case 0:
                return static_cast<std::int32_t>(random());
            case 1:
                return -static_cast<std::int32_t>(below(60));
            case 2:
                return INT32_MAX - static_cast<std::int32_t>(below(3));
            default:
                return static_cast<std::int32_t>(below(60));
            }
        };
        Coordinates coordinates;
        const std::uint32_t nx = 1 + below(7), ny = 1 + below(7);
        for (std::uint32_t i = 0; i < nx; ++i) {
            coordinates.xCoordinates.push_back(coordinate());
        }
        for (std::uint32_t i = 0; i < ny; ++i) {
            coordinates.yCoordinates.push_back(coordinate());
        }
        const PixelRange columns{0, below(3) == 0 ? static_cast<std::uint32_t>(random()) : kWidth};
        const PixelRange rows{static_cast<std::uint32_t>(coordinate()),
                              static_cast<std::uint32_t>(coordinate())};
        const bool backwards = below(2) == 0;
        const auto colors = DistinctColors(nx * ny);

        Canvas fast, slow;
        ASSERT_EQ(PaintSwatches(coordinates, columns, rows, colors, fast.View(backwards)), kSwatchesPainted);
        PaintSlowly(coordinates, columns, rows, colors, slow.View(backwards));
        ASSERT_EQ(fast.memory, slow.memory) << "seed " << seed;
    }
}

} // namespace
