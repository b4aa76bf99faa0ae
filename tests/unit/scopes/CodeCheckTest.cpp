#include "UyvyFrame.h"

#include <tessel/export/convert/V210Packing.h>
#include <tessel/scopes/CodeCheck.h>

#include <gtest/gtest.h>

#include <limits>

namespace tessel::scopes {
namespace {

using BR::PixelFormat;

CodeFaults Check(const exporting::FrameView& frame)
{
    SignalReader reader(frame.format, frame.width, frame.height, exporting::Matrix::Bt709);
    CodeFaults faults;
    CheckCodes(reader.Read(frame), frame.format, faults);
    return faults;
}

std::uint8_t FlagsOf(const Code& code)
{
    return Check(UyvyBars(PixelFormat::UYVY_422_8u_709, {code, code})).flags[0];
}

TEST(CodeCheck, TheEdgesOfTheLegalRangeAreLegal)
{
    for (const int luma : {16, 128, 235}) {
        EXPECT_EQ(FlagsOf({static_cast<std::uint8_t>(luma), 128, 128}), 0) << luma;
    }
    // Full chroma beside a grey that takes it: no part of R'G'B' leaves the gamut at half of it.
    EXPECT_EQ(FlagsOf({126, 160, 100}), 0);
}

TEST(CodeCheck, NamesWhatIsWrong)
{
    EXPECT_EQ(FlagsOf({15, 128, 128}), kOutsideRange);
    EXPECT_EQ(FlagsOf({236, 128, 128}), kOutsideRange);
    EXPECT_EQ(FlagsOf({254, 128, 128}), kOutsideRange | kOutsideGamut); // (254 - 16) / 219 = 1.087
    EXPECT_EQ(FlagsOf({0, 128, 128}), kReservedCode | kOutsideRange | kOutsideGamut);
    EXPECT_EQ(FlagsOf({255, 128, 128}), kReservedCode | kOutsideRange | kOutsideGamut);
    EXPECT_EQ(FlagsOf({126, 128, 0}) & kReservedCode, kReservedCode);
    EXPECT_EQ(FlagsOf({126, 128, 15}) & (kReservedCode | kOutsideRange), kOutsideRange);
    // Legal codes that are no colour: black with full chroma.
    EXPECT_EQ(FlagsOf({16, 240, 128}), kOutsideGamut);
}

TEST(CodeCheck, TenBitCodesOfTheInterfaceAreFourAtEachEnd)
{
    const auto flagsOf = [](std::uint16_t code) {
        const std::vector<std::uint16_t> luma(48, code);
        const std::vector<std::uint16_t> chroma(24, 512);
        const auto packed =
            std::make_shared<std::vector<std::byte>>(static_cast<std::size_t>(exporting::V210RowBytes(48)));
        exporting::PackV210Row(luma.data(), chroma.data(), chroma.data(), 48, packed->data());
        const CodeFaults faults = Check({.format = PixelFormat::V210_422_10u_709,
                                         .width = 48,
                                         .height = 1,
                                         .top = packed->data(),
                                         .rowBytes = exporting::V210RowBytes(48),
                                         .owner = packed});
        return faults.flags[7] & (kReservedCode | kOutsideRange);
    };
    EXPECT_EQ(flagsOf(3), kReservedCode | kOutsideRange);
    EXPECT_EQ(flagsOf(4), kOutsideRange);
    EXPECT_EQ(flagsOf(63), kOutsideRange);
    EXPECT_EQ(flagsOf(64), 0);
    EXPECT_EQ(flagsOf(940), 0);
    EXPECT_EQ(flagsOf(941), kOutsideRange);
    EXPECT_EQ(flagsOf(1019), kOutsideRange);
    EXPECT_EQ(flagsOf(1020), kReservedCode | kOutsideRange);
}

TEST(CodeCheck, FloatsAreCheckedByTheirLevelsAndCounted)
{
    const auto floats = std::make_shared<std::vector<float>>(
        std::vector<float>{0.5F, 0.5F, 0.5F, 1.0F, 0.5F, 0.5F, 1.06F, 1.0F, 0.0F, -0.04F, 1.04F, 1.0F,
                           std::numeric_limits<float>::quiet_NaN(), 0.5F, 0.5F, 1.0F});
    const CodeFaults faults = Check({.format = PixelFormat::BGRA_4444_32f,
                                     .width = 4,
                                     .height = 1,
                                     .top = reinterpret_cast<const std::byte*>(floats->data()),
                                     .rowBytes = 64,
                                     .owner = floats});
    EXPECT_EQ(faults.flags, (std::vector<std::uint8_t>{0, kOutsideGamut, 0, kOutsideGamut}));
    EXPECT_EQ(faults.outsideGamut, 2);
    EXPECT_EQ(faults.reserved, 0);
}

} // namespace
} // namespace tessel::scopes
