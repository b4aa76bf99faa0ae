// How frames are asked for, and what happens when the host fails.
#include "FrameHost.h"

#include <kestrel/importabi/ResultCodes.h>

#include <gtest/gtest.h>
#include <support/NumberReader.h>

#include <limits>
#include <string_view>
#include <vector>

using namespace testsupport;
using ImporterTessel::TesselInfo;

namespace {

TEST(FrameCreation, PassesTheSettingsAndTheRequestsSixteenBytesByAddress)
{
    FrameHost host;
    TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::V210_422_10u_709), 13, 7);
    info.mFramePAR = {4000000000U, 33};
    ASSERT_EQ(host.Request(info), ksResultServed);
    EXPECT_EQ(host.creation.count, 1);
    EXPECT_EQ(host.creation.frameSlot, host.record.frame);
    EXPECT_EQ(host.creation.access, 2);
    EXPECT_EQ(host.creation.pixelFormat, SdkCodeOf(BR::PixelFormat::V210_422_10u_709));
    EXPECT_EQ(host.creation.width, 13);
    EXPECT_EQ(host.creation.height, 7);
    EXPECT_FALSE(host.creation.reserved5);
    EXPECT_EQ(host.creation.reserved6, 0);
    EXPECT_EQ(host.creation.parNumerator, 4000000000U);
    EXPECT_EQ(host.creation.parDenominator, 33U);
    EXPECT_EQ(host.creation.extra16, host.record.extra16);
}

TEST(FrameCreation, AsksTheNewFrameForBoundsThenRowStepThenPixels)
{
    using Calls = std::vector<std::string_view>;
    FrameHost host;
    ASSERT_EQ(host.Request(SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8)), ksResultServed);
    EXPECT_EQ(host.frameCalls, (Calls{"create", "bounds", "row bytes", "pixels"}));
    FrameHost failing({.rowBytesFail = true});
    ASSERT_EQ(failing.Request(SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8)), ksResultFailed);
    EXPECT_EQ(failing.frameCalls, (Calls{"create", "bounds", "row bytes"}));
}

TEST(FrameCreation, ChangesNothingInTheRecord)
{
    FrameHost host;
    ASSERT_EQ(host.Request(SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8), 42), ksResultServed);
    ksFrameRec expected;
    std::memset(&expected, 0xCC, sizeof expected);
    expected.time = 42;
    expected.frame = host.record.frame;
    EXPECT_EQ(std::memcmp(&expected, &host.record, sizeof expected), 0);
}

TEST(FrameCreation, TheCreatorsStatusIsNotTested)
{
    FrameHost host({.creatorReportsFailure = true});
    EXPECT_EQ(host.Request(SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8)), ksResultServed);
    EXPECT_FALSE(host.IsUnpainted());
}

TEST(FrameCreation, ANullHandleFailsWithoutAskingTheFrameSuite)
{
    FrameHost host({.creatorGivesNull = true});
    EXPECT_EQ(host.Request(SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8)), ksResultFailed);
    EXPECT_EQ(host.creation.count, 1);
    EXPECT_EQ(host.frameQueries, 0);
}

TEST(FrameCreation, SizesThatNoHostMakesFailAtOnce)
{
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t extent : {0, -1, kLowest, kHighest}) {
        for (const std::int32_t render : {0, 1, 2, 3}) {
            FrameHost host({.creatorGivesNull = true});
            TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), extent, extent);
            info.mRenderFormat = render;
            info.mDrawFrameFieldNumber = true;
            EXPECT_EQ(host.Request(info), ksResultFailed);
            EXPECT_EQ(host.creation.width, extent);
        }
    }
}

TEST(FrameCreation, AFailingQueryLeavesTheStoredFrameUnpainted)
{
    using Behaviour = FrameHost::Behaviour;
    for (const Behaviour& behaviour : {Behaviour{.boundsFail = true}, Behaviour{.rowBytesFail = true},
                                       Behaviour{.pixelsFail = true}, Behaviour{.pixelsAreNull = true}}) {
        FrameHost host(behaviour);
        TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 64, 64);
        info.mDrawFrameFieldNumber = true;
        EXPECT_EQ(host.Request(info), ksResultFailed);
        EXPECT_NE(host.StoredFrame(), nullptr);
        EXPECT_TRUE(host.IsUnpainted());
    }
}

TEST(FrameCreation, ANullSlotForTheHandleFailsBeforeAnythingIsMade)
{
    FrameHost host;
    ksFrameRec record{};
    EXPECT_EQ(ImporterTessel::SynthesizeFrame(TesselInfo{}, &host.stdParms, record), ksResultFailed);
    EXPECT_EQ(host.creation.count, 0);
}

TEST(FrameCreation, TablesWithHolesFailBeforeAnythingIsMade)
{
    const TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 8, 8);
    for (int hole = 0; hole < 4; ++hole) {
        FrameHost host;
        (void)host.Request(info); // the tables are acquired now, whichever test ran first
        host.creation = {};
        switch (hole) {
        case 0:
            FrameHost::Creator().createFrame = nullptr;
            break;
        case 1:
            FrameHost::FrameSuite().getBounds = nullptr;
            break;
        case 2:
            FrameHost::FrameSuite().getRowBytes = nullptr;
            break;
        default:
            FrameHost::FrameSuite().getPixels = nullptr;
            break;
        }
        EXPECT_EQ(host.Request(info), ksResultFailed);
        EXPECT_EQ(host.creation.count, 0);
    }
}

TEST(FrameCreation, AnUnknownFormatIsAskedForAsZeroAndLeftUnpainted)
{
    for (const std::int32_t render : {0, 1, 3}) {
        FrameHost host;
        TesselInfo info = SmallClip(0x12345678, 64, 64);
        info.mRenderFormat = render;
        info.mDrawFrameFieldNumber = true;
        EXPECT_EQ(host.Request(info), ksResultServed);
        EXPECT_EQ(host.creation.pixelFormat, 0U);
        EXPECT_TRUE(host.IsUnpainted());
    }
}

TEST(FrameCreation, EveryHostFormatIsMadeInItsPaintableForm)
{
    for (const BR::PixelFormatInfo& format : BR::AllPixelFormats()) {
        FrameHost host;
        ASSERT_EQ(host.Request(SmallClip(format.sdkCode, 16, 4)), ksResultServed) << format.constant;
        const std::uint32_t code =
            PM_QELPixelFormatToPMPixelFormat(BR::SDKToBEPixelFormat(host.creation.pixelFormat));
        EXPECT_EQ(code >> 24U, 0U) << format.constant;
        EXPECT_NE(code, 0U) << format.constant;
        for (std::uint32_t row = 0; row < 4; ++row) {
            EXPECT_FALSE(host.IsUnpainted(row)) << format.constant << " row " << row;
        }
        EXPECT_TRUE(host.GuardsAreIntact()) << format.constant;
    }
}

TEST(FrameNumber, IsPrintedUprightForEveryRenderFormatAndRowDirection)
{
    NumberReader reader;
    for (const BR::PixelFormat format : {BR::PixelFormat::BGRA_4444_8u, BR::PixelFormat::BGRA_4444_32f,
                                         BR::PixelFormat::UYVY_422_8u_601, BR::PixelFormat::V210_422_10u_709}) {
        const std::uint32_t code = PM_QELPixelFormatToPMPixelFormat(format);
        for (const std::int32_t render : {0, 1, -7}) {
            for (const bool backwards : {false, true}) {
                FrameHost host({.backwards = backwards});
                TesselInfo info = SmallClip(SdkCodeOf(format), 160, 106);
                info.mRenderFormat = render;
                info.mDrawFrameFieldNumber = true;
                // One tick short of frame 1235 is still frame 1234.
                ASSERT_EQ(host.Request(info, 1235 * info.mVideoFrameRate.ticksPerFrame - 1), ksResultServed);
                const bool bottomFirst = code == 260 && !backwards;
                const BrightnessPicture picture{
                    .width = 160, .height = 106, .at = [&](std::uint32_t x, std::uint32_t y) {
                        return Brightness(host.Row(bottomFirst ? 105 - y : y), code, x);
                    }};
                EXPECT_EQ(reader.Read(picture), 1234) << "code " << code << " render format " << render;
                EXPECT_TRUE(host.GuardsAreIntact());
            }
        }
    }
}

TEST(FrameNumber, TimesBeforeTheClipHaveNegativeNumbersAndRatesWithoutFramesZero)
{
    NumberReader reader;
    const auto readAt = [&](const TesselInfo& info, std::int64_t ticks) {
        FrameHost host;
        EXPECT_EQ(host.Request(info, ticks), ksResultServed);
        return reader.Read({.width = 320, .height = 240, .at = [&](std::uint32_t x, std::uint32_t y) {
                                return Brightness(host.Row(y), pixmill::kBGRA8, x);
                            }});
    };
    TesselInfo info = SmallClip(SdkCodeOf(BR::PixelFormat::BGRA_4444_8u), 320, 240);
    info.mDrawFrameFieldNumber = true;
    EXPECT_EQ(readAt(info, -1), -1) << "rounded toward minus infinity";
    EXPECT_EQ(readAt(info, std::numeric_limits<std::int64_t>::min()), -1089306033)
        << "-9223372036854775808 / 8467200000 = -1089306032.3";
    info.mVideoFrameRate = {1};
    EXPECT_EQ(readAt(info, std::numeric_limits<std::int64_t>::max()), std::numeric_limits<std::int32_t>::max());
    for (const std::int64_t rate :
         {std::int64_t{0}, std::int64_t{-5}, std::numeric_limits<std::int64_t>::max()}) {
        info.mVideoFrameRate = {rate};
        EXPECT_EQ(readAt(info, 1000000), 0) << "rate " << rate;
    }
}

} // namespace
