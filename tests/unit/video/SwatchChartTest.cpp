#include "FrameHost.h"

#include <kestrel/importabi/ResultCodes.h>

#include <gtest/gtest.h>
#include <support/NumberReader.h>

#include <functional>

using namespace testsupport;
using ImporterTessel::TesselInfo;

namespace {

constexpr std::uint32_t kBottom = 1079;

/// Band 1: 2 × 2 swatches, band 2: 3 × 1, band 3: 1 × 2. Rows 100 and 300, 600, 900 and 1000.
TesselInfo ChartClip(BR::PixelFormat format = BR::PixelFormat::BGRA_4444_32f)
{
    TesselInfo info = SmallClip(SdkCodeOf(format), 1920, 1080);
    info.mRenderFormat = ImporterTessel::kRenderColorSwatches;
    info.mSwatchCoordinates = {.colorSwatches = {.xCoordinates = {400, 1400}, .yCoordinates = {100, 300}},
                               .legalRangeGradient = {.xCoordinates = {100, 200, 301}, .yCoordinates = {600}},
                               .fullRangeGradient = {.xCoordinates = {7}, .yCoordinates = {900, 1000}}};
    const auto colors = [](std::size_t swatches, float base) {
        std::vector<float> values;
        for (std::size_t i = 0; i < swatches; ++i) {
            const float level = base + static_cast<float>(i);
            values.insert(values.end(), {level + 0.1F, level + 0.2F, level + 0.3F}); // red, green, blue
        }
        return values;
    };
    info.mSwatchColors = {.colorSwatches = colors(4, 10),
                          .legalRangeGradient = colors(3, 20),
                          .fullRangeGradient = colors(2, 30)};
    return info;
}

std::array<float, 4> Swatch(float level)
{
    return {level + 0.3F, level + 0.2F, level + 0.1F, 1.0F};
}

TEST(SwatchChart, PatchesStandWhereTheCoordinatesSayCountedFromThePicturesTop)
{
    for (const bool backwards : {false, true}) {
        FrameHost host({.backwards = backwards});
        ASSERT_EQ(host.Request(ChartClip()), ksResultServed);
        // Whatever direction the host's step has, the chart's top row is the last one walked to.
        const auto at = [&](std::uint32_t x, std::uint32_t y) { return FloatPixel(host.Row(kBottom - y), x); };
        EXPECT_EQ(at(0, 0), Swatch(10));
        EXPECT_EQ(at(899, 199), Swatch(10)) << "columns part at 400 + 1000/2, rows at 100 + 200/2";
        EXPECT_EQ(at(899, 200), Swatch(11)) << "column by column: the second colour is below the first";
        EXPECT_EQ(at(900, 199), Swatch(12));
        EXPECT_EQ(at(1919, 449), Swatch(13));
        EXPECT_EQ(at(149, 450), Swatch(20)) << "bands part at 300 + 300/2";
        EXPECT_EQ(at(150, 749), Swatch(21));
        EXPECT_EQ(at(249, 600), Swatch(21));
        EXPECT_EQ(at(250, 600), Swatch(22)) << "200 + 101/2 = 250";
        EXPECT_EQ(at(1919, 749), Swatch(22));
        EXPECT_EQ(at(0, 750), Swatch(30)) << "600 + 300/2";
        EXPECT_EQ(at(1919, 949), Swatch(30));
        EXPECT_EQ(at(0, 950), Swatch(31)) << "900 + 100/2";
        EXPECT_EQ(at(1919, 1079), Swatch(31));
        EXPECT_TRUE(host.GuardsAreIntact());
    }
}

TEST(SwatchChart, BordersInOddGapsAreRoundedTowardsTheUpperBand)
{
    FrameHost host;
    TesselInfo info = ChartClip();
    info.mSwatchCoordinates.legalRangeGradient.yCoordinates = {601}; // 300 + 301/2 = 450, 601 + 299/2 = 750
    ASSERT_EQ(host.Request(info), ksResultServed);
    const auto at = [&](std::uint32_t y) { return FloatPixel(host.Row(kBottom - y), 0); };
    EXPECT_EQ(at(449), Swatch(11));
    EXPECT_EQ(at(450), Swatch(20));
    EXPECT_EQ(at(749), Swatch(20));
    EXPECT_EQ(at(750), Swatch(30));
    info.mSwatchCoordinates.legalRangeGradient.yCoordinates = {600};
    info.mSwatchCoordinates.fullRangeGradient.yCoordinates = {901, 1000}; // 600 + 301/2 = 750
    ASSERT_EQ(host.Request(info), ksResultServed);
    EXPECT_EQ(at(749), Swatch(20));
    EXPECT_EQ(at(750), Swatch(30));
}

TEST(SwatchChart, OtherFormatsSucceedUnpaintedWithTheNumber)
{
    for (const BR::PixelFormat format : {BR::PixelFormat::BGRA_4444_8u, BR::PixelFormat::ARGB_4444_32f}) {
        FrameHost host;
        TesselInfo info = ChartClip(format);
        ASSERT_EQ(host.Request(info), ksResultServed);
        EXPECT_TRUE(host.IsUnpainted());
    }
    FrameHost host;
    TesselInfo info = ChartClip(BR::PixelFormat::BGRA_4444_8u);
    info.mDrawFrameFieldNumber = true;
    ASSERT_EQ(host.Request(info, 77 * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
    // The number gets the turned rows too, so in formats stored top row first it stands on its head.
    NumberReader reader;
    EXPECT_EQ(reader.Read({.width = 1920,
                           .height = 1080,
                           .at =
                               [&](std::uint32_t x, std::uint32_t y) {
                                   return Brightness(host.Row(kBottom - y), pixmill::kBGRA8, x);
                               }}),
              77);
}

TEST(SwatchChart, TheNumberIsUprightLikeTheChart)
{
    FrameHost host;
    TesselInfo info = ChartClip();
    info.mDrawFrameFieldNumber = true;
    ASSERT_EQ(host.Request(info, 1234 * info.mVideoFrameRate.ticksPerFrame), ksResultServed);
    NumberReader reader;
    EXPECT_EQ(reader.Read({.width = 1920,
                           .height = 1080,
                           .at = [&](std::uint32_t x,
                                     std::uint32_t y) { return Brightness(host.Row(kBottom - y), 260, x); }}),
              1234);
}

void ExpectRefused(const std::string& what, const std::function<void(TesselInfo&)>& change)
{
    FrameHost host;
    TesselInfo info = ChartClip();
    info.mDrawFrameFieldNumber = true;
    change(info);
    EXPECT_EQ(host.Request(info), ksResultFailed) << what;
    EXPECT_NE(host.StoredFrame(), nullptr) << what;
    EXPECT_TRUE(host.IsUnpainted()) << what;
}

TEST(SwatchChart, OtherSizesThan1920x1080Fail)
{
    ExpectRefused("width", [](TesselInfo& info) { info.mFrameWidth = 1919; });
    ExpectRefused("height", [](TesselInfo& info) { info.mFrameHeight = 1081; });
    ExpectRefused("turned", [](TesselInfo& info) { std::swap(info.mFrameWidth, info.mFrameHeight); });
}

TEST(SwatchChart, EmptyListsFail)
{
    ExpectRefused("no lists at all", [](TesselInfo& info) {
        info.mSwatchCoordinates = {};
        info.mSwatchColors = {};
    });
    ExpectRefused("x", [](TesselInfo& info) { info.mSwatchCoordinates.colorSwatches.xCoordinates.clear(); });
    ExpectRefused("y",
                  [](TesselInfo& info) { info.mSwatchCoordinates.legalRangeGradient.yCoordinates.clear(); });
    ExpectRefused("colours", [](TesselInfo& info) { info.mSwatchColors.fullRangeGradient.clear(); });
    ExpectRefused("x and colours", [](TesselInfo& info) { // 0 × 2 × 3 = 0 colours would match
        info.mSwatchCoordinates.fullRangeGradient.xCoordinates.clear();
        info.mSwatchColors.fullRangeGradient.clear();
    });
}

TEST(SwatchChart, ColourCountsThatDoNotMatchFail)
{
    ExpectRefused("one more", [](TesselInfo& info) { info.mSwatchColors.colorSwatches.push_back(0); });
    ExpectRefused("one less", [](TesselInfo& info) { info.mSwatchColors.legalRangeGradient.pop_back(); });
    ExpectRefused("one column more", [](TesselInfo& info) {
        info.mSwatchCoordinates.fullRangeGradient.xCoordinates.push_back(9);
    });
}

TEST(SwatchChart, BandsOutOfOrderFail)
{
    ExpectRefused("1 meets 2", [](TesselInfo& info) {
        info.mSwatchCoordinates.colorSwatches.yCoordinates = {100, 600};
    });
    ExpectRefused("2 meets 3",
                  [](TesselInfo& info) { info.mSwatchCoordinates.legalRangeGradient.yCoordinates = {900}; });
    ExpectRefused("3 reaches row 1080", [](TesselInfo& info) {
        info.mSwatchCoordinates.fullRangeGradient.yCoordinates = {900, 1080};
    });
    ExpectRefused("a negative row is a huge one", [](TesselInfo& info) {
        info.mSwatchCoordinates.colorSwatches.yCoordinates = {100, -1};
    });
}

TEST(SwatchChart, OnlyTheLastAndFirstRowsOfBandsAreCompared)
{
    TesselInfo info = ChartClip();
    info.mSwatchCoordinates.colorSwatches.yCoordinates = {5000, 300};
    info.mSwatchCoordinates.fullRangeGradient.yCoordinates = {900, 1079};
    FrameHost host;
    EXPECT_EQ(host.Request(info), ksResultServed);
    EXPECT_TRUE(host.GuardsAreIntact());
}

TEST(SwatchChart, HostileColumnsStayInsideTheFrame)
{
    TesselInfo info = ChartClip();
    info.mSwatchCoordinates.colorSwatches.xCoordinates = {-5, 3};
    info.mSwatchCoordinates.legalRangeGradient.xCoordinates = {2147483647, -2147483647 - 1, 0};
    for (const bool backwards : {false, true}) {
        FrameHost host({.backwards = backwards});
        EXPECT_EQ(host.Request(info), ksResultServed);
        EXPECT_TRUE(host.GuardsAreIntact());
    }
}

} // namespace
