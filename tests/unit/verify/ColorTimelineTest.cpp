#include <tessel/verify/align/ColorTimeline.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace tessel::verify::align {
namespace {

constexpr std::int64_t kFrames = 121;

/// Red to grey at the top, green to orange at the bottom, in 8-bit codes, as a straight line in time.
ColorSignature Gradient(double frame)
{
    const double t = frame / static_cast<double>(kFrames);
    const double top[2][3] = {{255, 0, 0}, {127.5, 127.5, 127.5}};
    const double bottom[2][3] = {{0, 255, 0}, {255, 127.5, 63.75}};
    ColorSignature signature;
    for (int row = 0; row < ColorTimeline::kRows; ++row) {
        const double s = static_cast<double>(row) / ColorTimeline::kRows;
        for (int part = 0; part < 3; ++part) {
            const double upper = top[0][part] + (top[1][part] - top[0][part]) * t;
            const double lower = bottom[0][part] + (bottom[1][part] - bottom[0][part]) * t;
            signature.push_back(static_cast<float>(upper + (lower - upper) * s));
        }
    }
    return signature;
}

ColorSignature Rounded(ColorSignature signature)
{
    for (float& code : signature) {
        code = std::floor(code + 0.5F);
    }
    return signature;
}

ColorTimeline Timeline()
{
    return ColorTimeline({Gradient(0), Gradient(60), Gradient(120)}, kFrames);
}

TEST(ColorTimeline, RoundedCodesTellEachOfAHundredFrames)
{
    const ColorTimeline timeline = Timeline();
    EXPECT_TRUE(timeline.Tells());
    for (int frame = 0; frame < kFrames; ++frame) {
        const auto reading = timeline.Read(Rounded(Gradient(frame)));
        ASSERT_TRUE(reading);
        EXPECT_EQ(std::llround(reading->frame), frame);
        EXPECT_LT(reading->distance, 0.5);
        EXPECT_GT(ConfidenceOf(*reading), 0.9) << frame;
    }
}

TEST(ColorTimeline, NoiseMakesReadingsUnsure)
{
    std::mt19937 random(5);
    std::normal_distribution<float> error(0, 12);
    ColorSignature noisy = Gradient(50);
    for (float& code : noisy) {
        code += error(random);
    }
    const auto reading = Timeline().Read(noisy);
    ASSERT_TRUE(reading);
    EXPECT_NEAR(reading->frame, 50, 3 * reading->uncertainty);
    EXPECT_LT(ConfidenceOf(*reading), 0.8);
}

TEST(ColorTimeline, PicturesThatStandStillTellNothing)
{
    EXPECT_FALSE(ColorTimeline({Gradient(3), Gradient(3)}, 100).Tells());
}

TEST(ColorTimeline, SomethingElseIsFarAway)
{
    const auto reading = Timeline().Read(ColorSignature(Gradient(0).size(), 16));
    ASSERT_TRUE(reading);
    EXPECT_GT(reading->distance, 50);
}

TEST(ColorTimeline, ChangedColoursTellTheirFramesByTheChangedLine)
{
    // Exchanged red and blue in squeezed range.
    const auto change = [](const std::array<double, 3>& codes) {
        return std::array<double, 3>{16 + codes[2] * 219 / 255, 16 + codes[1] * 219 / 255,
                                     16 + codes[0] * 219 / 255};
    };
    const ColorTimeline plain = Timeline();
    const ColorTimeline changed = plain.Changed(change);
    for (const int frame : {0, 17, 60, 120}) {
        ColorSignature signature = Gradient(frame);
        for (std::size_t i = 0; i + 2 < signature.size(); i += 3) {
            const auto codes = change({signature[i], signature[i + 1], signature[i + 2]});
            std::copy(codes.begin(), codes.end(), signature.begin() + static_cast<std::ptrdiff_t>(i));
        }
        const auto reading = changed.Read(Rounded(signature));
        ASSERT_TRUE(reading);
        EXPECT_NEAR(reading->frame, frame, 0.2);
        EXPECT_LT(reading->distance, 0.5);
        EXPECT_GT(plain.Read(signature)->distance, 10);
    }
}

} // namespace
} // namespace tessel::verify::align
