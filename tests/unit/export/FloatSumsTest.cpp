/// Y'CbCr float values far outside 0..1, infinite or not numbers, on their way into float pictures.

#include <tessel/export/convert/FrameConverter.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace tessel::exporting {
namespace {

using Triple = std::array<double, 3>;

/// BT.709 in doubles.
Triple Exact(const std::array<float, 3>& ycbcr)
{
    const auto luma = static_cast<double>(ycbcr[0]);
    const double red = luma + 1.5748 * static_cast<double>(ycbcr[2]);
    const double blue = luma + 1.8556 * static_cast<double>(ycbcr[1]);
    return {red, (luma - 0.2126 * red - 0.0722 * blue) / 0.7152, blue};
}

/// R'G'B' that the converter makes of a 709 pixel.
Triple RgbOf(float luma, float cb, float cr)
{
    // VUYX in memory: Cr, Cb, Y', unused.
    const std::array<float, 4> pixel{cr, cb, luma, 0.0F};
    constexpr auto kFormat = BR::PixelFormat::VUYX_4444_32f_709;
    const FrameView view{kFormat, 1, 1, reinterpret_cast<const std::byte*>(pixel.data()), 16, nullptr};
    const Picture picture = FrameConverter({kFormat, PictureLayout::Gbrpf32, 1, 1, {}, {}}).Convert(view);
    const auto sample = [&](std::size_t plane) {
        float value = 0.0F;
        std::memcpy(&value, picture.planes[plane], 4);
        return static_cast<double>(value);
    };
    return {sample(2), sample(0), sample(1)};
}

TEST(FloatSums, FloatTargetsGetValuesHoweverFarOutside)
{
    constexpr float kLargest = std::numeric_limits<float>::max();
    const float infinity = std::numeric_limits<float>::infinity();
    const float none = std::numeric_limits<float>::quiet_NaN();
    const struct {
        std::array<float, 3> given; ///< Y', Cb, Cr
        std::array<float, 3> taken; ///< what the sums are made of
    } kRows[] = {{{20000.0F, 0.0F, 0.0F}, {20000.0F, 0.0F, 0.0F}},
                 {{-1e30F, 1e30F, 2e30F}, {-1e30F, 1e30F, 2e30F}},
                 {{1e-20F, -1e-20F, 0.0F}, {1e-20F, -1e-20F, 0.0F}},
                 {{kLargest, -kLargest, kLargest}, {kLargest, -kLargest, kLargest}},
                 {{infinity, 0.0F, 0.0F}, {kLargest, 0.0F, 0.0F}},
                 {{infinity, -infinity, infinity}, {kLargest, -kLargest, kLargest}},
                 {{-infinity, -infinity, -infinity}, {-kLargest, -kLargest, -kLargest}},
                 {{none, 0.25F, none}, {0.0F, 0.25F, 0.0F}}};
    for (const auto& row : kRows) {
        const Triple exact = Exact(row.taken);
        const Triple got = RgbOf(row.given[0], row.given[1], row.given[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            constexpr double kFarthest = kLargest;
            const double expected = std::clamp(exact[i], -kFarthest, kFarthest);
            EXPECT_LE(std::abs(got[i] - expected), 1e-6 * std::abs(expected))
                << got[i] << " instead of " << expected << " from " << row.given[0] << ' ' << row.given[1];
        }
    }
}

} // namespace
} // namespace tessel::exporting
