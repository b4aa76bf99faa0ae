#include "FrameHost.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/pixmill/Fill.h>

#include <gtest/gtest.h>

#include <limits>

using namespace testsupport;
using ImporterTessel::FloatColor;
using ImporterTessel::TesselInfo;

namespace {

constexpr FloatColor kUpper{.mAlphaPart = 0.5F, .mRedPart = 1.0F, .mGreenPart = 0.25F, .mBluePart = -3.0F};
constexpr FloatColor kLower{.mAlphaPart = 1.0F, .mRedPart = 0.125F, .mGreenPart = 2.0F, .mBluePart = 0.75F};

TesselInfo FieldsClip(std::uint32_t sdkCode, std::int32_t width, std::int32_t height, std::int32_t fieldType)
{
    TesselInfo info = SmallClip(sdkCode, width, height);
    info.mRenderFormat = ImporterTessel::kRenderFieldColors;
    info.mFieldType = fieldType;
    info.mUpperFieldColor = kUpper;
    info.mLowerFieldColor = kLower;
    return info;
}

/// One row of a colour, padding of a last group as far as pixels need it, on unpainted bytes.
std::vector<std::byte> RowOf(std::uint32_t code, std::uint32_t width, const FloatColor& color)
{
    std::vector<std::byte> row(RowLength(code, width), FrameHost::kUnpainted);
    const std::array<float, 4> values{color.mBluePart, color.mGreenPart, color.mRedPart, color.mAlphaPart};
    EXPECT_EQ(PM_FillWithColor(row.data(), 0, width, 1, code, values.data(), 260), 0);
    return row;
}

TEST(FieldColors, BGRAFloatHoldsBlueGreenRedAlphaUnclamped)
{
    FrameHost host;
    ASSERT_EQ(host.Request(FieldsClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_32f), 3, 2, 0)), ksResultServed);
    for (std::uint32_t x = 0; x < 3; ++x) {
        EXPECT_EQ(FloatPixel(host.Row(1), x), (std::array<float, 4>{-3.0F, 0.25F, 1.0F, 0.5F}));
    }
}

TEST(FieldColors, ProgressiveUsesTheUpperColourAlone)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        FrameHost host;
        ASSERT_EQ(host.Request(FieldsClip(format.sdkCode, 37, 9, 0)), ksResultServed);
        for (std::uint32_t row = 0; row < 9; ++row) {
            EXPECT_EQ(host.RowCopy(row), RowOf(format.code, 37, kUpper)) << format.name << " row " << row;
        }
        EXPECT_TRUE(host.GuardsAreIntact()) << format.name;
    }
}

TEST(FieldColors, InterlacedAlternatesFromTheGivenAddressWhateverTheFieldOrder)
{
    for (const PaintableFormat& format : PaintableFormats()) {
        const auto upper = RowOf(format.code, 37, kUpper);
        const auto lower = RowOf(format.code, 37, kLower);
        // The last three have a low byte of 0, which is all that the description reports.
        for (const std::int32_t fieldType :
             {1, 2, -1, 1000000, 256, 65536, std::numeric_limits<std::int32_t>::min()}) {
            for (const bool backwards : {false, true}) {
                FrameHost host({.backwards = backwards});
                ASSERT_EQ(host.Request(FieldsClip(format.sdkCode, 37, 10, fieldType)), ksResultServed);
                for (std::uint32_t row = 0; row < 10; ++row) {
                    EXPECT_EQ(host.RowCopy(row), row % 2 == 0 ? upper : lower)
                        << format.name << " field type " << fieldType << " row " << row;
                }
                EXPECT_TRUE(host.GuardsAreIntact()) << format.name;
            }
        }
    }
}

TEST(FieldColors, TheLastRowOfAnOddInterlacedHeightStaysUnpainted)
{
    for (const std::int32_t height : {1, 3, 11}) {
        FrameHost host;
        ASSERT_EQ(host.Request(FieldsClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 5, height, 1)),
                  ksResultServed);
        const auto rows = static_cast<std::uint32_t>(height);
        for (std::uint32_t row = 0; row < rows; ++row) {
            EXPECT_EQ(host.IsUnpainted(row), row == rows - 1) << "row " << row << " of " << height;
        }
        EXPECT_TRUE(host.GuardsAreIntact());
    }
}

TEST(FieldColors, DoNotChangeThroughTheClip)
{
    FrameHost first, later;
    const TesselInfo info = FieldsClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 4, 4, 1);
    ASSERT_EQ(later.Request(info, 123456789012), ksResultServed);
    const auto row = later.RowCopy(1);
    FrameHost again;
    ASSERT_EQ(again.Request(info, 0), ksResultServed);
    EXPECT_EQ(again.RowCopy(1), row);
}

TEST(UnknownRenderFormat, PaintsNothing)
{
    for (const std::int32_t render : {3, -1, 2147483647}) {
        FrameHost host;
        TesselInfo info = FieldsClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 4, 4, 0);
        info.mRenderFormat = render;
        EXPECT_EQ(host.Request(info), ksResultServed);
        EXPECT_TRUE(host.IsUnpainted());
    }
}

} // namespace
