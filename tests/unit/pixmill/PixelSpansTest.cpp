// Runs and single pixels in a row, against a row painted whole.
#include <kestrel/pixmill/PixelSpans.h>

#include <gtest/gtest.h>
#include <support/GuardedFrame.h>
#include <support/PaintableFormats.h>
#include <support/ReferenceColor.h>

using namespace pixmill;
using namespace testsupport;

namespace {

constexpr ReferenceColor kBack{.8F, .25F, .125F, .5F};
constexpr ReferenceColor kInk{.1F, .9F, .6F, 1};

StoredColor Stored(const PaintableFormat& format, const ReferenceColor& color)
{
    return ConvertColor(format.code, {color.blue, color.green, color.red, color.alpha});
}

void PaintRow(std::span<std::byte> row, const PaintableFormat& format, std::uint32_t width,
              const ReferenceColor& color)
{
    const auto bytes = ReferenceFormat(format.name).Row(width, color);
    std::copy(bytes.begin(), bytes.end(), row.begin());
}

} // namespace

TEST(PixelSpans, ASpanChangesItsPixelsAndNoOthers)
{
    constexpr std::uint32_t kWidth = 20;
    for (const PaintableFormat& format : PaintableFormats()) {
        const std::size_t used = RowLength(format.code, kWidth);
        GuardedFrame back(used, 1);
        GuardedFrame ink(used, 1);
        PaintRow(back.Row(0), format, kWidth, kBack);
        PaintRow(ink.Row(0), format, kWidth, kInk);
        for (std::uint32_t first = 0; first <= kWidth; ++first) {
            for (std::uint32_t count = 0; first + count <= kWidth; ++count) {
                GuardedFrame frame(used, 1);
                PaintRow(frame.Row(0), format, kWidth, kBack);
                PaintSpan(frame.Row(0).data(), format.code, first, count, Stored(format, kInk));
                for (std::uint32_t x = 0; x < kWidth; ++x) {
                    const bool isInked = x >= first && x < first + count;
                    ASSERT_EQ(Brightness(frame.Row(0).data(), format.code, x),
                              Brightness((isInked ? ink : back).Row(0).data(), format.code, x))
                        << format.name << ", span " << first << " + " << count << ", pixel " << x;
                }
                ASSERT_TRUE(frame.GuardsAreUntouched()) << format.name;
            }
        }
    }
}

TEST(PixelSpans, ASpanOverTheWholeRowIsAFilledRow)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        const std::uint32_t width = 24; // whole groups in every format
        GuardedFrame frame(RowLength(format.code, width), 1);
        PaintSpan(frame.Row(0).data(), format.code, 0, width, Stored(format, kInk));
        EXPECT_TRUE(SameBytes(frame.Row(0), ReferenceFormat(format.name).Row(width, kInk))) << format.name;
        EXPECT_TRUE(frame.GuardsAreUntouched()) << format.name;
    }
}

TEST(PixelSpans, BlendingGoesFromTheOldPixelToTheNewOne)
{
    constexpr std::uint32_t kWidth = 12;
    for (const PaintableFormat& format : PaintableFormats()) {
        const std::size_t used = RowLength(format.code, kWidth);
        GuardedFrame frame(used, 1);
        PaintRow(frame.Row(0), format, kWidth, kBack);
        const auto before = Brightness(frame.Row(0).data(), format.code, 7);
        BlendPixel(frame.Row(0).data(), format.code, 7, Stored(format, kInk), 0);
        EXPECT_TRUE(SameBytes(frame.Row(0), ReferenceFormat(format.name).Row(kWidth, kBack))) << format.name;

        GuardedFrame ink(used, 1);
        PaintRow(ink.Row(0), format, kWidth, kInk);
        const auto after = Brightness(ink.Row(0).data(), format.code, 7);
        BlendPixel(frame.Row(0).data(), format.code, 7, Stored(format, kInk), 0.5F);
        const bool isInteger = (format.code & kBitFloat) == 0;
        EXPECT_NEAR(Brightness(frame.Row(0).data(), format.code, 7), (before + after) / 2,
                    isInteger ? 0.5 : 1e-6)
            << format.name;

        for (std::uint32_t x = 0; x < kWidth; ++x) {
            BlendPixel(frame.Row(0).data(), format.code, x, Stored(format, kInk), 1);
        }
        EXPECT_TRUE(SameBytes(frame.Row(0), ReferenceFormat(format.name).Row(kWidth, kInk))) << format.name;
        EXPECT_TRUE(frame.GuardsAreUntouched()) << format.name;
    }
}
