// Where the number stands, what it leaves alone, and what it does with odd arguments.
#include "PrintedFrame.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>

using namespace testsupport;
using pixmill::LayOutNumber;
using pixmill::NumberLayout;

namespace {

using testsupport::kOrange;
constexpr std::array<float, 4> kBlack{0.0F, 0.0F, 0.0F, 1.0F};
constexpr std::array<float, 4> kWhite{1.0F, 1.0F, 1.0F, 1.0F};

/// Everything that a format stores of a pixel; in 4:2:2 the pixel's luma and the chroma of its pair.
std::vector<double> SamplesOf(const std::byte* row, std::uint32_t code, std::uint32_t x)
{
    std::vector<double> samples{Brightness(row, code, x)};
    if ((code & pixmill::kBitV210) != 0) {
        for (const std::uint32_t sample : {x % 6 / 2 * 4, x % 6 / 2 * 4 + 2}) { // Cb and Cr of the pair
            std::uint32_t word = 0;
            std::memcpy(&word, row + x / 6 * 16 + sample / 3 * 4, 4);
            samples.push_back(word >> (10 * (sample % 3)) & 1023U);
        }
    } else if ((code & pixmill::kBit422) != 0) {
        const std::size_t chroma = x / 2 * 4 + ((code & pixmill::kBitSwapped) != 0 ? 1 : 0);
        samples.push_back(std::to_integer<int>(row[chroma]));
        samples.push_back(std::to_integer<int>(row[chroma + 2]));
    } else {
        for (std::size_t component = 0; component < 4; ++component) {
            if ((code & pixmill::kBitFloat) != 0) {
                float value = 0;
                std::memcpy(&value, row + (std::size_t{x} * 4 + component) * 4, 4);
                samples.push_back(value);
            } else {
                samples.push_back(std::to_integer<int>(row[std::size_t{x} * 4 + component]));
            }
        }
    }
    return samples;
}

bool IsInside(const NumberLayout& plate, std::uint32_t x, std::uint32_t y)
{
    return plate.digitHeight != 0 && x >= plate.left && x < plate.left + plate.width && y >= plate.top &&
           y < plate.top + plate.height;
}

/// Counts pixels outside the plate that differ from the same picture without a number.
std::size_t ChangesOutside(PrintedFrame& printed, PrintedFrame& plain, const NumberLayout& plate)
{
    std::size_t changes = 0;
    for (std::uint32_t y = 0; y < printed.Height(); ++y) {
        for (std::uint32_t x = 0; x < printed.Width(); ++x) {
            if (!IsInside(plate, x, y) && SamplesOf(printed.ShownRow(y), printed.Code(), x) !=
                                              SamplesOf(plain.ShownRow(y), printed.Code(), x)) {
                ++changes;
            }
        }
    }
    return changes;
}

TEST(NumberLayout, BeginsAtFivePercentWithDigitsOfTwelvePercent)
{
    const NumberLayout layout = LayOutNumber(1920, 1080, 6, 0.12F, 0.05F, 0.05F);
    EXPECT_EQ(layout.left, 96U);          // 0.05 × 1920
    EXPECT_EQ(layout.top, 54U);           // 0.05 × 1080
    EXPECT_EQ(layout.digitHeight, 130U);  // 0.12 × 1080 = 129.6
    EXPECT_EQ(layout.advance, 91U);       // 0.70 × 130
    EXPECT_EQ(layout.width, 612U);        // 6 × 91 + 2 × 33, the margin being 0.25 × 130 = 32.5
    EXPECT_EQ(layout.height, 130U + 52U); // margins of 0.20 × 130
}

TEST(NumberLayout, EndsInsideTheFrameWhateverItsSize)
{
    for (std::uint32_t width = 0; width <= 200; ++width) {
        for (std::uint32_t height : {0U, 1U, 2U, 5U, 17U, 90U, 1080U, 4000000000U}) {
            for (const std::uint32_t characters : {6U, 7U, 11U}) {
                for (const float place : {0.0F, 0.05F, 0.5F, 0.99F, 1.0F, 7.0F, -1.0F, NAN, INFINITY}) {
                    const NumberLayout layout = LayOutNumber(width, height, characters, 0.12F, place, place);
                    if (layout.digitHeight != 0) {
                        ASSERT_LE(layout.left + layout.width, width);
                        ASSERT_LE(std::uint64_t{layout.top} + layout.height, height);
                        ASSERT_EQ(layout.left % 2, 0U);
                        ASSERT_EQ(layout.width % 2, 0U);
                    }
                }
            }
        }
    }
}

TEST(PrintNumber, ThePlateIsBlackAndTheStrokesAreWhiteInEveryFormat)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        PrintedFrame frame(format.code, 720, 480);
        frame.Fill(kOrange);
        ASSERT_EQ(frame.Print(111111), 0);
        PrintedFrame black(format.code, 720, 480), white(format.code, 720, 480);
        black.Fill(kBlack);
        white.Fill(kWhite);
        const NumberLayout plate = LayOutNumber(720, 480, 6, 0.12F, 0.05F, 0.05F);
        const auto samples = [&](PrintedFrame& of, std::uint32_t x, std::uint32_t y) {
            return SamplesOf(of.ShownRow(y), format.code, x);
        };
        for (const auto& [x, y] :
             {std::pair{plate.left, plate.top}, std::pair{plate.left + plate.width - 1, plate.top},
              std::pair{plate.left, plate.top + plate.height - 1},
              std::pair{plate.left + plate.width - 1, plate.top + plate.height - 1}}) {
            EXPECT_EQ(samples(frame, x, y), samples(black, x, y)) << format.name << " corner of the plate";
        }
        // The upright of a one stands 0.30 from the left of its box, 0.14 wide.
        const auto middle = static_cast<std::uint32_t>(plate.InkOffset() + 0.30 * plate.digitHeight);
        for (std::uint32_t cell = 0; cell < 6; ++cell) {
            const std::uint32_t x = plate.CellLeft(cell) + middle;
            const std::uint32_t y = plate.CellTop() + plate.digitHeight / 2;
            EXPECT_EQ(samples(frame, x, y), samples(white, x, y)) << format.name << " cell " << cell;
        }
    }
}

TEST(PrintNumber, EdgesAreSmooth)
{
    PrintedFrame frame(pixmill::kBGRA8, 720, 480);
    frame.Fill(kOrange);
    ASSERT_EQ(frame.Print(0), 0);
    const NumberLayout plate = LayOutNumber(720, 480, 6, 0.12F, 0.05F, 0.05F);
    std::size_t greys = 0, whites = 0;
    for (std::uint32_t y = plate.top; y < plate.top + plate.height; ++y) {
        for (std::uint32_t x = plate.left; x < plate.left + plate.width; ++x) {
            const double value = Brightness(frame.ShownRow(y), pixmill::kBGRA8, x);
            whites += value == 255 ? 1 : 0;
            greys += value > 0 && value < 255 ? 1 : 0;
        }
    }
    EXPECT_GT(greys, 500U);
    // A zero's ink is the ring of its centre line, 2π × 0.21 + 2 × 0.44 long and 0.14 wide.
    const double ink = 6 * (2 * std::acos(-1.0) * 0.21 + 0.88) * 0.14 * plate.digitHeight * plate.digitHeight;
    EXPECT_NEAR(static_cast<double>(whites) + static_cast<double>(greys) / 2, ink, ink / 50);
}

TEST(PrintNumber, LeavesEveryPixelOutsideThePlateAlone)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        for (const std::uint32_t width : {133U, 67U, 62U, 61U, 31U, 1U}) {
            for (const RowOrder order : {RowOrder::StepForwards, RowOrder::StepBackwards}) {
                const std::uint32_t height = 75;
                PrintedFrame printed(format.code, width, height, order),
                    plain(format.code, width, height, order);
                printed.Fill(kOrange);
                plain.Fill(kOrange);
                ASSERT_EQ(printed.Print(-7), 0);
                const NumberLayout plate = LayOutNumber(width, height, 7, 0.12F, 0.05F, 0.05F);
                ASSERT_EQ(ChangesOutside(printed, plain, plate), 0U) << format.name << " width " << width;
                ASSERT_TRUE(printed.GuardsAreIntact()) << format.name << " width " << width;
            }
        }
    }
}

TEST(PrintNumber, WithoutThePlateOnlyTheDigitsChange)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        PrintedFrame printed(format.code, 180, 120), plain(format.code, 180, 120), white(format.code, 180, 120);
        printed.Fill(kOrange);
        plain.Fill(kOrange);
        white.Fill(kWhite);
        ASSERT_EQ(printed.Print(4711, /*opaque=*/false), 0);
        const NumberLayout plate = LayOutNumber(180, 120, 6, 0.12F, 0.05F, 0.05F);
        EXPECT_EQ(ChangesOutside(printed, plain, plate), 0U) << format.name;
        std::size_t unchanged = 0, whites = 0;
        for (std::uint32_t y = plate.top; y < plate.top + plate.height; ++y) {
            for (std::uint32_t x = plate.left; x < plate.left + plate.width; ++x) {
                const auto seen = SamplesOf(printed.ShownRow(y), format.code, x);
                unchanged += seen == SamplesOf(plain.ShownRow(y), format.code, x) ? 1 : 0;
                whites += seen == SamplesOf(white.ShownRow(y), format.code, x) ? 1 : 0;
            }
        }
        const std::size_t area = std::size_t{plate.width} * plate.height;
        EXPECT_GT(unchanged, area / 2) << format.name;
        EXPECT_GT(whites, area / 20) << format.name;
        EXPECT_TRUE(printed.GuardsAreIntact()) << format.name;
    }
}

TEST(PrintNumber, BothRowOrdersShowTheSamePicture)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        PrintedFrame forwards(format.code, 321, 200), backwards(format.code, 321, 200, RowOrder::StepBackwards);
        for (PrintedFrame* frame : {&forwards, &backwards}) {
            frame->Fill(kOrange);
            ASSERT_EQ(frame->Print(123456), 0);
        }
        for (std::uint32_t y = 0; y < 200; ++y) {
            ASSERT_EQ(std::memcmp(forwards.ShownRow(y), backwards.ShownRow(y), RowLength(format.code, 321)), 0)
                << format.name << " row " << y;
        }
    }
}

TEST(PrintNumber, ShrinksUntilItFitsANarrowFrame)
{
    NumberReader reader;
    for (const std::uint32_t width : {400U, 200U, 100U, 70U}) {
        PrintedFrame frame(pixmill::kBGRA8, width, 1080);
        frame.Fill(kOrange);
        ASSERT_EQ(frame.Print(123456), 0);
        EXPECT_EQ(reader.Read(frame.Picture()), 123456) << "width " << width;
    }
}

TEST(PrintNumber, RefusesWhatItCannotPaintAndTouchesNothing)
{
    const std::array<float, 2> position{0.05F, 0.05F};
    PrintedFrame frame(pixmill::kBGRA8, 64, 64);
    const std::vector<std::byte> before = frame.Memory();
    for (const std::uint32_t code : {0U, 1U, 0x01000029U, 0x09000039U, 0xFFFFFFFFU}) {
        EXPECT_LT(PM_PrintNum(frame.Pixels(), frame.RowBytes(), code, 64, 64, 1, 0.5F, position.data(), true),
                  0);
    }
    EXPECT_LT(PM_PrintNum(nullptr, 256, pixmill::kBGRA8, 64, 64, 1, 0.5F, position.data(), true), 0);
    EXPECT_LT(PM_PrintNum(frame.Pixels(), frame.RowBytes(), pixmill::kBGRA8, 64, 64, 1, 0.5F, nullptr, true),
              0);
    EXPECT_EQ(frame.Memory(), before);
}

TEST(PrintNumber, OddHeightsAndPlacesStayInsideTheFrame)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const float textHeight : {0.0F, -1.0F, 0.5F, 1.0F, 1e30F, kInfinity, -kInfinity, NAN}) {
        for (const float place : {0.0F, -0.0F, 0.5F, 0.999F, 1.0F, 2.0F, -3.0F, 1e30F, kInfinity, NAN}) {
            for (const std::uint32_t code : {pixmill::kBGRA8, pixmill::kBGRAFloat, 0x211U, 0x19U}) {
                PrintedFrame frame(code, 161, 97);
                frame.Fill(kOrange);
                ASSERT_EQ(frame.Print(-2147483647 - 1, true, textHeight, {place, place}), 0);
                ASSERT_TRUE(frame.GuardsAreIntact()) << textHeight << " at " << place;
            }
        }
    }
}

TEST(PrintNumber, AFrameWithoutPixelsIsLeftAlone)
{
    std::array<std::byte, 64> memory{};
    const std::array<float, 2> position{0.05F, 0.05F};
    for (const auto& [width, height] : {std::pair{0U, 0U}, std::pair{0U, 9U}, std::pair{9U, 0U}}) {
        EXPECT_EQ(
            PM_PrintNum(memory.data(), 64, pixmill::kBGRAFloat, width, height, 1, 0.12F, position.data(), true),
            0);
    }
    EXPECT_EQ(memory, (std::array<std::byte, 64>{}));
}

TEST(PrintNumber, ManyThreadsPrintWhatOnePrints)
{
    const auto print = [](std::uint32_t height) {
        PrintedFrame frame(pixmill::kBGRA8, height * 3 / 2, height);
        frame.Fill(kOrange);
        for (const std::int32_t number : {123, 456789, -1}) {
            EXPECT_EQ(frame.Print(number), 0);
        }
        return frame.Memory();
    };
    std::vector<std::vector<std::byte>> expected;
    for (std::uint32_t height = 40; height < 140; height += 10) {
        expected.push_back(print(height));
    }
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_EQ(print(40 + 10 * static_cast<std::uint32_t>(i)), expected[i]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
