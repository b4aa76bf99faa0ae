#include <tessel/verify/judge/color/detail/ChromaFit.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace tessel::verify::judge {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;

/// Cb and Cr of bars whose edges are at `edges`, moved right by `shift`: each sample is the mean of the light
/// that falls on it, as in a camera.
std::vector<float> Bars(double shift, float low, float high)
{
    constexpr double kEdges[] = {16, 33, 48};
    std::vector<float> row;
    for (int x = 0; x < kWidth; ++x) {
        double share = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double covered = std::clamp(x + 1 - (kEdges[i] + shift), 0.0, 1.0);
            share += i % 2 == 0 ? covered : -covered;
        }
        row.push_back(static_cast<float>(low + (high - low) * share));
    }
    std::vector<float> plane;
    for (int y = 0; y < kHeight; ++y) {
        plane.insert(plane.end(), row.begin(), row.end());
    }
    return plane;
}

ChromaPicture Chart(double shift, float gain = 1)
{
    ChromaPicture picture;
    picture.width = picture.chromaWidth = kWidth;
    picture.height = picture.chromaHeight = kHeight;
    picture.luma.assign(static_cast<std::size_t>(kWidth) * kHeight, 128);
    picture.blue = Bars(shift, -40 * gain, 50 * gain);
    picture.red = Bars(shift, 60 * gain, -20 * gain);
    return picture;
}

ChromaFit FitOf(const ChromaPicture& is, int perChroma = 1)
{
    std::vector<EdgeProfile> profiles;
    LumaShift luma;
    FindEdges(Chart(0), is, Axis::Across, 400, profiles, luma);
    EXPECT_EQ(profiles.size(), 3U * kHeight);
    EXPECT_EQ(luma.edges, 0);
    return FitChroma(profiles, /*clips=*/false, perChroma);
}

TEST(ChromaFit, ShiftsAreMeasuredWhateverTheFilter)
{
    for (const double shift : {-1.5, -0.3, 0.0, 0.25, 0.5, 2.0}) {
        const ChromaFit fit = FitOf(Chart(shift));
        EXPECT_NEAR(fit.shift, shift, 0.01) << shift;
        EXPECT_LT(fit.shiftUncertainty, 0.1);
    }
}

TEST(ChromaFit, ShiftsCountLumaSamples)
{
    EXPECT_NEAR(FitOf(Chart(0.5), 2).shift, 1.0, 0.02);
}

TEST(ChromaFit, OtherColoursDoNotMatter)
{
    ChromaPicture is = Chart(0.5, 0.7F);
    std::swap(is.blue, is.red);
    EXPECT_NEAR(FitOf(is).shift, 0.5, 0.01);
}

TEST(ChromaFit, NoiseOfFiveCodesLeavesTheShiftToATenthOfASample)
{
    ChromaPicture is = Chart(0.5);
    std::mt19937 random(3);
    std::normal_distribution<float> error(0, 5);
    for (std::size_t i = 0; i < is.blue.size(); ++i) {
        is.blue[i] += error(random);
        is.red[i] += error(random);
    }
    const ChromaFit fit = FitOf(is);
    EXPECT_NEAR(fit.shift, 0.5, 0.1);
    EXPECT_NEAR(fit.shift, 0.5, fit.shiftUncertainty);
}

/// Every second sample kept, or the mean of two; brought back by repeating it. By hand, apart from the fit's
/// own.
std::vector<float> Halved(const std::vector<float>& plane, bool isMean)
{
    std::vector<float> halved = plane;
    for (std::size_t i = 0; i + 1 < plane.size(); i += 2) {
        halved[i] = halved[i + 1] = isMean ? (plane[i] + plane[i + 1]) / 2 : plane[i];
    }
    return halved;
}

TEST(ChromaFit, HalfOfTheSamplesIsNoShift)
{
    for (const bool isMean : {false, true}) {
        ChromaPicture is = Chart(0);
        is.blue = Halved(is.blue, isMean);
        is.red = Halved(is.red, isMean);
        const ChromaFit fit = FitOf(is);
        EXPECT_EQ(fit.thinned, 2);
        EXPECT_LT(fit.thinnedResidual, 0.01);
        EXPECT_GT(fit.shiftedResidual, 0.1);
    }
}

TEST(ChromaFit, EdgesWithoutChromaLeftTellNothing)
{
    EXPECT_EQ(FitOf(Chart(0, 0)).edges, 0);
}

TEST(ChromaFit, PairsOfRowsAreSeenInASlowChange)
{
    ChromaPicture was = Chart(0);
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            was.blue[static_cast<std::size_t>(y * kWidth + x)] = static_cast<float>(y);
            was.red[static_cast<std::size_t>(y * kWidth + x)] = static_cast<float>(-y);
        }
    }
    ChromaPicture is = was;
    RowSteps plain;
    TakeRowSteps(was, is, plain);
    EXPECT_FLOAT_EQ(static_cast<float>(plain.is), static_cast<float>(plain.was));
    for (int y = 0; y + 1 < kHeight; y += 2) {
        for (int x = 0; x < kWidth; ++x) {
            is.blue[static_cast<std::size_t>((y + 1) * kWidth + x)] = static_cast<float>(y);
            is.red[static_cast<std::size_t>((y + 1) * kWidth + x)] = static_cast<float>(-y);
        }
    }
    RowSteps pairs;
    TakeRowSteps(was, is, pairs);
    EXPECT_EQ(pairs.is, 0);
    EXPECT_NEAR(pairs.isNext, 2 * pairs.wasNext, 1e-6);
}

} // namespace
} // namespace tessel::verify::judge
