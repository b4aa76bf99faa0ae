#include "UyvyFrame.h"

#include <tessel/scopes/Colorimetry.h>
#include <tessel/scopes/Signal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace tessel::scopes {
namespace {

using BR::PixelFormat;
using exporting::Matrix;

struct KnownBar {
    std::string_view name;
    Code code;
};

/// Published 8-bit codes of 75 % bars, in the order of `BarTargets`: red, yellow, green, cyan, blue, magenta.
/// BT.601's are those of SMPTE EG 1 and of every standard-definition generator, BT.709's those of ARIB STD-B28.
/// @{
const std::vector<KnownBar> kBars601{{"R", {65, 100, 212}},  {"Yl", {162, 44, 142}}, {"G", {112, 72, 58}},
                                     {"Cy", {131, 156, 44}}, {"B", {35, 212, 114}},  {"Mg", {84, 184, 198}}};
const std::vector<KnownBar> kBars709{{"R", {51, 109, 212}},  {"Yl", {168, 44, 136}}, {"G", {133, 63, 52}},
                                     {"Cy", {145, 147, 44}}, {"B", {28, 212, 120}},  {"Mg", {63, 193, 204}}};
/// @}

void ExpectBarsOnTargets(PixelFormat format, Matrix matrix, const std::vector<KnownBar>& bars)
{
    std::vector<Code> codes;
    for (const KnownBar& bar : bars) {
        codes.push_back(bar.code);
    }
    const exporting::FrameView frame = UyvyBars(format, codes);
    SignalReader reader(format, frame.width, frame.height, Matrix::Rgb);
    const Signal& signal = reader.Read(frame);
    EXPECT_EQ(reader.Matrix(), matrix);
    const auto targets = BarTargets(matrix, 0.75);
    // Published codes are rounded, some of them more than once: within one code.
    constexpr double kCode = 1.0 / 224;
    for (std::size_t i = 0; i < bars.size(); ++i) {
        EXPECT_EQ(targets[i].name, bars[i].name);
        EXPECT_NEAR(signal.cb.samples[i], targets[i].cb, kCode) << bars[i].name;
        EXPECT_NEAR(signal.cr.samples[i], targets[i].cr, kCode) << bars[i].name;
    }
}

TEST(Signal, BarsOfBt601LieInTheirTargets)
{
    ExpectBarsOnTargets(PixelFormat::UYVY_422_8u_601, Matrix::Smpte170M, kBars601);
}

TEST(Signal, BarsOfBt709LieInTheirTargets)
{
    ExpectBarsOnTargets(PixelFormat::UYVY_422_8u_709, Matrix::Bt709, kBars709);
}

TEST(Signal, ScalesBlackWhiteAndFullChroma)
{
    const exporting::FrameView frame =
        UyvyBars(PixelFormat::UYVY_422_8u_709, {{16, 128, 128}, {235, 240, 16}, {126, 128, 128}});
    SignalReader reader(frame.format, frame.width, frame.height, Matrix::Rgb);
    const Signal& signal = reader.Read(frame);
    EXPECT_NEAR(signal.luma.Row(0)[0], 0.0F, 1e-6F);
    EXPECT_NEAR(signal.luma.Row(0)[2], 1.0F, 1e-6F);
    EXPECT_NEAR(signal.cb.Row(0)[1], 0.5F, 1e-6F);
    EXPECT_NEAR(signal.cr.Row(0)[1], -0.5F, 1e-6F);
    // 110/219 = 0.5023
    EXPECT_NEAR(signal.luma.Row(1)[5], 110.0F / 219.0F, 1e-6F);
    EXPECT_EQ(signal.cb.width, 3); // no sample that the picture does not hold
}

TEST(Signal, GreyHasEqualPartsOfRedGreenAndBlue)
{
    const exporting::FrameView frame =
        UyvyBars(PixelFormat::UYVY_422_8u_601, {{126, 128, 128}, {126, 128, 128}});
    SignalReader reader(frame.format, frame.width, frame.height, Matrix::Rgb);
    const Signal& signal = reader.Read(frame);
    for (const Plane* plane : {&signal.red, &signal.green, &signal.blue}) {
        EXPECT_NEAR(plane->Row(0)[0], 110.0F / 219.0F, 1e-5F);
    }
}

TEST(Signal, RgbBarsLieInTheTargetsOfTheMatrixThatTheClipNames)
{
    // 100 % bars in BGRX: red, yellow, green, cyan, blue, magenta.
    const auto bytes = std::make_shared<std::vector<std::uint8_t>>(std::vector<std::uint8_t>{
        0, 0, 255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 255, 255, 0, 0, 255, 0, 0, 0, 255, 0, 255, 0});
    const exporting::FrameView frame{.format = PixelFormat::BGRX_4444_8u,
                                     .width = 6,
                                     .height = 1,
                                     .top = reinterpret_cast<const std::byte*>(bytes->data()),
                                     .rowBytes = 24,
                                     .owner = bytes};
    for (const Matrix matrix : {Matrix::Bt709, Matrix::Smpte170M, Matrix::Bt2020}) {
        SignalReader reader(frame.format, 6, 1, matrix);
        const Signal& signal = reader.Read(frame);
        const auto targets = BarTargets(matrix, 1.0);
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_NEAR(signal.cb.samples[i], targets[i].cb, 1e-6);
            EXPECT_NEAR(signal.cr.samples[i], targets[i].cr, 1e-6);
        }
    }
}

TEST(Signal, LinearLightPassesTheCurveOfBt709)
{
    // BT.709-6: L = 0.18 gives 1.099 × 0.18^0.45 - 0.099 = 0.409.
    const auto floats = std::make_shared<std::vector<float>>(std::vector<float>{0.18F, 0.18F, 0.18F, 1.0F});
    const exporting::FrameView frame{.format = PixelFormat::BGRX_4444_32f_Linear,
                                     .width = 1,
                                     .height = 1,
                                     .top = reinterpret_cast<const std::byte*>(floats->data()),
                                     .rowBytes = 16,
                                     .owner = floats};
    SignalReader reader(frame.format, 1, 1, Matrix::Bt709);
    EXPECT_NEAR(reader.Read(frame).red.samples[0], 1.099 * std::pow(0.18, 0.45) - 0.099, 1e-3);
}

TEST(Signal, ARowStepReadsThoseRowsAlone)
{
    exporting::FrameView frame = UyvyBars(PixelFormat::UYVY_422_8u_709, {{16, 128, 128}}, 5);
    auto* const rows = const_cast<std::byte*>(frame.top);
    for (int row = 0; row < 5; ++row) {
        rows[4 * row + 1] = static_cast<std::byte>(16 + row);
    }
    SignalReader reader(frame.format, frame.width, frame.height, Matrix::Rgb, 2);
    const Signal& signal = reader.Read(frame);
    ASSERT_EQ(signal.luma.height, 3);
    for (int row = 0; row < 3; ++row) {
        EXPECT_NEAR(signal.luma.Row(row)[0], static_cast<float>(2 * row) / 219.0F, 1e-6F);
    }
}

} // namespace
} // namespace tessel::scopes
