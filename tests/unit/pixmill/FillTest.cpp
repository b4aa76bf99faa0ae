// Rectangles in every format: the right bytes, no others, in both row directions.
#include <kestrel/pixmill/Fill.h>
#include <kestrel/pixmill/PixelFormatCodes.h>

#include <gtest/gtest.h>
#include <support/GuardedFrame.h>
#include <support/PaintableFormats.h>
#include <support/ReferenceColor.h>

#include <array>
#include <limits>
#include <thread>
#include <tuple>

using namespace testsupport;

namespace {

constexpr std::uint32_t kBGRAFloatCode = 260;
constexpr ReferenceColor kColor{.25F, .5F, 1, .75F};

std::int32_t Fill(GuardedFrame& frame, std::uint32_t firstRow, std::ptrdiff_t rowBytes, std::uint32_t width,
                  std::uint32_t rows, std::uint32_t code, const ReferenceColor& color)
{
    const std::array<float, 4> bgra = {color.blue, color.green, color.red, color.alpha};
    return PM_FillWithColor(frame.Row(firstRow).data(), static_cast<std::int32_t>(rowBytes), width, rows, code,
                            bgra.data(), kBGRAFloatCode);
}

class EveryFormat : public ::testing::TestWithParam<PaintableFormat> {
protected:
    void ExpectFilled(std::uint32_t width, std::uint32_t rows, std::size_t guardBytes, std::size_t misalignment)
    {
        SCOPED_TRACE(::testing::Message() << GetParam().name << ' ' << width << "x" << rows << ", rows "
                                          << guardBytes << " bytes apart, misaligned by " << misalignment);
        const std::size_t used = RowLength(GetParam().code, width);
        ASSERT_EQ(pixmill::BytesPerRow(GetParam().code, width), used);
        const auto expected = ReferenceFormat(GetParam().name).Row(width, kColor);
        for (const bool upwards : {false, true}) {
            GuardedFrame frame(used, rows, guardBytes, misalignment);
            ASSERT_EQ(Fill(frame, upwards ? rows - 1 : 0, upwards ? -frame.RowBytes() : frame.RowBytes(), width,
                           rows, GetParam().code, kColor),
                      0);
            for (std::uint32_t row = 0; row < rows; ++row) {
                ASSERT_TRUE(SameBytes(frame.Row(row), expected)) << "row " << row << ", upwards " << upwards;
            }
            ASSERT_TRUE(frame.GuardsAreUntouched()) << "upwards " << upwards;
        }
    }
};

/// Sizes where groups, wide stores and their remainders begin and end.
constexpr std::uint32_t kHeights[] = {1, 2, 7, 33};
constexpr std::tuple<std::uint32_t, std::uint32_t> kPictures[] = {
    {720, 480}, {1920, 1080}, {1919, 5}, {720, 1}};

TEST_P(EveryFormat, EveryWidthIsFilledAndNothingBesideIt)
{
    for (std::uint32_t width = 1; width <= 67; ++width) {
        for (const std::uint32_t rows : kHeights) {
            ExpectFilled(width, rows, 64, 0);
        }
    }
}

TEST_P(EveryFormat, EveryHeightIsFilledAndNothingBesideIt)
{
    for (std::uint32_t rows = 1; rows <= 33; ++rows) {
        ExpectFilled(31, rows, 20, 0);
    }
}

TEST_P(EveryFormat, AnyAlignmentOfTheFirstRowAndOfTheStepServes)
{
    for (std::size_t misalignment = 0; misalignment < 64; ++misalignment) {
        ExpectFilled(37, 3, misalignment % 7, misalignment);
        ExpectFilled(66, 2, 0, misalignment); // whole groups, rows without a gap
    }
}

TEST_P(EveryFormat, PicturesAreFilledAndNothingBesideThem)
{
    for (const auto& [width, rows] : kPictures) {
        ExpectFilled(width, rows, 48, 16);
    }
}

TEST_P(EveryFormat, RowsBetweenTheFilledOnesStay)
{
    constexpr std::uint32_t kWidth = 17;
    GuardedFrame frame(RowLength(GetParam().code, kWidth), 9);
    ASSERT_EQ(Fill(frame, 1, 2 * frame.RowBytes(), kWidth, 4, GetParam().code, kColor), 0);
    const auto expected = ReferenceFormat(GetParam().name).Row(kWidth, kColor);
    for (std::uint32_t row = 0; row < 9; ++row) {
        const std::vector<std::byte> untouched(expected.size(), GuardedFrame::kGuard);
        EXPECT_TRUE(SameBytes(frame.Row(row), row % 2 == 1 ? expected : untouched)) << "row " << row;
    }
    EXPECT_TRUE(frame.GuardsAreUntouched());
}

TEST_P(EveryFormat, RowByRowGivesWhatOneFillGives)
{
    for (const std::uint32_t width : {1U, 5U, 48U, 720U}) {
        GuardedFrame atOnce(RowLength(GetParam().code, width), 6);
        GuardedFrame rowByRow(RowLength(GetParam().code, width), 6);
        ASSERT_EQ(Fill(atOnce, 0, atOnce.RowBytes(), width, 6, GetParam().code, kColor), 0);
        for (std::uint32_t row = 0; row < 6; ++row) {
            ASSERT_EQ(Fill(rowByRow, row, rowByRow.RowBytes(), width, 1, GetParam().code, kColor), 0);
        }
        for (std::uint32_t row = 0; row < 6; ++row) {
            EXPECT_TRUE(SameBytes(rowByRow.Row(row), atOnce.Row(row))) << width << " wide, row " << row;
        }
    }
}

TEST_P(EveryFormat, OddColorsAreStoredAsExactArithmeticSays)
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    for (const ReferenceColor& color :
         {ReferenceColor{-1, 2, .5F, 2}, ReferenceColor{kNaN, .5F, kInfinity, 1},
          ReferenceColor{-kInfinity, -kInfinity, kInfinity, kInfinity}, ReferenceColor{0, 0, 0, 0}}) {
        for (const std::uint32_t rows : {1U, 3U}) {
            GuardedFrame frame(RowLength(GetParam().code, 19), rows);
            ASSERT_EQ(Fill(frame, 0, frame.RowBytes(), 19, rows, GetParam().code, color), 0);
            const auto expected = ReferenceFormat(GetParam().name).Row(19, color);
            EXPECT_TRUE(SameBytes(frame.Row(rows - 1), expected)) << GetParam().name;
            EXPECT_TRUE(frame.GuardsAreUntouched());
        }
    }
}

TEST_P(EveryFormat, NoRowsAndNoWidthWriteNothing)
{
    GuardedFrame frame(64, 2);
    EXPECT_EQ(Fill(frame, 0, frame.RowBytes(), 0, 2, GetParam().code, kColor), 0);
    EXPECT_EQ(Fill(frame, 0, frame.RowBytes(), 0, 1, GetParam().code, kColor), 0);
    EXPECT_EQ(Fill(frame, 0, frame.RowBytes(), 4, 0, GetParam().code, kColor), 0);
    const std::vector<std::byte> untouched(64, GuardedFrame::kGuard);
    EXPECT_TRUE(SameBytes(frame.Row(0), untouched));
    EXPECT_TRUE(SameBytes(frame.Row(1), untouched));
}

INSTANTIATE_TEST_SUITE_P(Fill, EveryFormat, ::testing::ValuesIn(PaintableFormats()),
                         [](const auto& test) { return test.param.name; });

// In large frames, rows with gaps between them are written by streaming stores, which small frames do not use.
TEST_P(EveryFormat, FieldsOfLargePicturesInterleave)
{
    constexpr ReferenceColor kOther{.75F, .25F, .5F, 1};
    constexpr std::size_t kLargeBytes = 28'000'000; // beyond what a fill takes for a small frame
    const auto many = static_cast<std::uint32_t>(kLargeBytes / RowLength(GetParam().code, 1920)) / 2 * 2;
    for (const std::uint32_t rows : {64U, 65U, many}) {
        const std::uint32_t width = rows == many ? 1920 : 96;
        const std::size_t used = RowLength(GetParam().code, width);
        const auto upper = ReferenceFormat(GetParam().name).Row(width, kColor);
        const auto lower = ReferenceFormat(GetParam().name).Row(width, kOther);
        GuardedFrame frame(used, rows, 32);
        const std::ptrdiff_t step = 2 * frame.RowBytes();
        ASSERT_EQ(Fill(frame, 0, step, width, rows / 2, GetParam().code, kColor), 0);
        ASSERT_EQ(Fill(frame, rows / 2 * 2 - 1, -step, width, rows / 2, GetParam().code, kOther), 0);
        for (std::uint32_t row = 0; row < rows / 2 * 2; ++row) {
            ASSERT_TRUE(SameBytes(frame.Row(row), row % 2 == 0 ? upper : lower)) << row;
        }
        if (rows % 2 != 0) {
            EXPECT_EQ(frame.Row(rows - 1).front(), GuardedFrame::kGuard)
                << "the last row of an odd number stays";
        }
        ASSERT_TRUE(frame.GuardsAreUntouched());
    }
}

TEST(Fill, AColorMayLieAtAnyAddress)
{
    std::array<std::byte, 32> storage{};
    const std::array<float, 4> bgra = {.25F, .5F, 1, .75F};
    for (std::size_t offset = 0; offset < 16; ++offset) {
        std::memcpy(storage.data() + offset, bgra.data(), 16);
        for (const std::uint32_t code : {12U, 260U}) {
            GuardedFrame frame(48, 1);
            ASSERT_EQ(PM_FillWithColor(frame.Row(0).data(), 48, 3, 1, code, storage.data() + offset, 260), 0);
            const auto expected = ReferenceFormat(code == 12 ? "BGRA_4444_8u" : "BGRA_4444_32f").Row(3, kColor);
            EXPECT_TRUE(SameBytes(frame.Row(0).first(expected.size()), expected)) << offset;
        }
    }
}

TEST(Fill, WhatCannotBePaintedIsRefusedAndLeftAlone)
{
    GuardedFrame frame(64, 2);
    const std::array<float, 4> color = {1, 1, 1, 1};
    void* const pixels = frame.Row(0).data();
    for (const std::uint32_t code :
         {0U, 1U, 13U | 0x200U, 0x01000029U, 0x09000039U, 0x10000839U, 0xFFFFFFFFU}) {
        EXPECT_LT(PM_FillWithColor(pixels, 64, 4, 2, code, color.data(), 260), 0) << std::hex << code;
    }
    EXPECT_LT(PM_FillWithColor(pixels, 64, 4, 2, 12, color.data(), 12), 0);
    EXPECT_LT(PM_FillWithColor(pixels, 64, 4, 2, 12, nullptr, 260), 0);
    EXPECT_LT(PM_FillWithColor(nullptr, 64, 4, 2, 12, color.data(), 260), 0);
    const std::vector<std::byte> untouched(64, GuardedFrame::kGuard);
    EXPECT_TRUE(SameBytes(frame.Row(0), untouched));
    EXPECT_TRUE(SameBytes(frame.Row(1), untouched));
}

TEST(Fill, ManyThreadsFillWhatOneFills)
{
    constexpr std::uint32_t kThreads = 8;
    constexpr std::uint32_t kRows = 64;
    for (const PaintableFormat& format : PaintableFormats()) {
        GuardedFrame frame(RowLength(format.code, 333), kRows * kThreads, 0);
        std::vector<std::thread> threads;
        for (std::uint32_t t = 0; t < kThreads; ++t) {
            threads.emplace_back([&, t] {
                EXPECT_EQ(Fill(frame, t * kRows, frame.RowBytes(), 333, kRows, format.code, kColor), 0);
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        const auto expected = ReferenceFormat(format.name).Row(333, kColor);
        for (std::uint32_t row = 0; row < frame.Rows(); ++row) {
            ASSERT_TRUE(SameBytes(frame.Row(row), expected)) << format.name << ", row " << row;
        }
        EXPECT_TRUE(frame.GuardsAreUntouched());
    }
}

} // namespace
