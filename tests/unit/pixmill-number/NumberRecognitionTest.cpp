// What is printed can be read back, in every format, size and row order.
#include "PrintedFrame.h"

#include <gtest/gtest.h>

#include <limits>

using namespace testsupport;

namespace {

struct FrameSize {
    std::uint32_t width, height;
    std::int32_t step; // between the numbers tried from 0 to 99999
};

// Steps are primes, so that all digits of a number change from one to the next.
constexpr std::array<FrameSize, 3> kSizes{{{160, 106, 997}, {720, 480, 4999}, {3840, 2160, 33331}}};
using testsupport::kOrange;

/// Formats of one layout are read from the same samples. One format of each layout, and every one whose pixels
/// share samples, gets all numbers; the others get some.
bool IsOneOfItsLayout(std::uint32_t code)
{
    return code == pixmill::kBGRA8 || code == pixmill::kBGRAFloat || code == pixmill::kVUYA8_709 ||
           (code & pixmill::kBit422) != 0;
}

std::string Describe(const PaintableFormat& format, const FrameSize& size, RowOrder order, std::int32_t number)
{
    return format.name + ", " + std::to_string(size.width) + "x" + std::to_string(size.height) +
           (order == RowOrder::StepForwards ? ", positive step, " : ", negative step, ") +
           std::to_string(number);
}

TEST(NumberRecognition, NumbersFrom0To99999AreReadBackInEveryFormatSizeAndRowOrder)
{
    NumberReader reader;
    double worst = 1;
    for (const PaintableFormat& format : PaintableFormats()) {
        for (const FrameSize& size : kSizes) {
            if (size.width > 1000 && !IsOneOfItsLayout(format.code)) {
                continue; // frames of 130 MB
            }
            for (const RowOrder order : {RowOrder::StepForwards, RowOrder::StepBackwards}) {
                const std::int32_t step = IsOneOfItsLayout(format.code) ? size.step : 33331;
                PrintedFrame frame(format.code, size.width, size.height, order);
                frame.Fill(kOrange);
                for (std::int32_t number = 0; number <= 99999; number += step) {
                    ASSERT_EQ(frame.Print(number), 0);
                    ASSERT_EQ(reader.Read(frame.Picture()), number) << Describe(format, size, order, number);
                    worst = std::min(worst, reader.WorstCorrelation());
                }
            }
        }
    }
    // The reader's own shapes are independent of the printer's; perfect agreement would be 1.
    EXPECT_GT(worst, 0.95);
}

TEST(NumberRecognition, LongAndNegativeNumbersAreReadBack)
{
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
    NumberReader reader;
    for (const PaintableFormat& format : PaintableFormats()) {
        for (const FrameSize& size : kSizes) {
            if (size.width > 1000 && !IsOneOfItsLayout(format.code)) {
                continue; // frames of 130 MB
            }
            for (const RowOrder order : {RowOrder::StepForwards, RowOrder::StepBackwards}) {
                PrintedFrame frame(format.code, size.width, size.height, order);
                for (const std::int32_t number :
                     {-1, -123456, 1000000, 87654321, kHighest, kHighest - 1, kLowest, kLowest + 1}) {
                    frame.Fill(kOrange);
                    ASSERT_EQ(frame.Print(number), 0);
                    ASSERT_EQ(reader.Read(frame.Picture()), number) << Describe(format, size, order, number);
                }
            }
        }
    }
}

TEST(NumberRecognition, EveryDigitIsReadBackInEveryPlace)
{
    NumberReader reader;
    for (const auto& [width, height] : {std::pair{160U, 106U}, std::pair{720U, 480U}}) {
        PrintedFrame frame(pixmill::kBGRA8, width, height);
        frame.Fill(kOrange);
        for (std::int32_t number = 0; number <= 99999; number += 89) {
            ASSERT_EQ(frame.Print(number), 0);
            ASSERT_EQ(reader.Read(frame.Picture()), number) << width << "x" << height;
        }
    }
}

TEST(NumberRecognition, AnEmptyPictureHasNoNumber)
{
    NumberReader reader;
    PrintedFrame frame(pixmill::kBGRA8, 720, 480);
    frame.Fill(kOrange);
    EXPECT_EQ(reader.Read(frame.Picture()), std::nullopt);
}

TEST(NumberRecognition, APictureUpsideDownHasNoNumber)
{
    NumberReader reader;
    PrintedFrame frame(pixmill::kBGRA8, 720, 480);
    frame.Fill(kOrange);
    ASSERT_EQ(frame.Print(123457), 0);
    BrightnessPicture upsideDown = frame.Picture();
    const auto upright = upsideDown.at;
    upsideDown.at = [&](std::uint32_t x, std::uint32_t y) { return upright(x, 479 - y); };
    EXPECT_EQ(reader.Read(upsideDown), std::nullopt);
}

} // namespace
