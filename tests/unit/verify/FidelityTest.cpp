#include <tessel/verify/judge/fidelity/PlaneLikeness.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace tessel::verify::judge {
namespace {

read::ComponentView View(const std::vector<std::uint8_t>& samples, int width)
{
    read::ComponentView view;
    view.first = reinterpret_cast<const std::byte*>(samples.data());
    view.rowBytes = width;
    view.step = 1;
    view.width = width;
    view.height = static_cast<int>(samples.size()) / width;
    return view;
}

TEST(Fidelity, EqualPlanesAreExact)
{
    const std::vector<std::uint8_t> plane(32 * 32, 77);
    const PlaneLikeness likeness = Compare(View(plane, 32), View(plane, 32));
    EXPECT_TRUE(likeness.isEqual);
    EXPECT_EQ(likeness.psnr, 100);
    EXPECT_EQ(likeness.ssim, 1);
}

TEST(Fidelity, PsnrIsThatOfItsDefinition)
{
    const std::vector<std::uint8_t> plane(32 * 32, 77);
    std::vector<std::uint8_t> off = plane;
    for (std::uint8_t& sample : off) {
        sample = static_cast<std::uint8_t>(sample + 2);
    }
    // 10 log10(255² / 2²)
    EXPECT_NEAR(Compare(View(plane, 32), View(off, 32)).psnr, 42.1102, 1e-3);
    std::vector<std::uint8_t> one = plane;
    one[5] = 87;
    // 10 log10(255² / (10² / 1024))
    EXPECT_NEAR(Compare(View(plane, 32), View(one, 32)).psnr, 58.2337, 1e-3);
}

TEST(Fidelity, SsimOfALostStructureIsNearZeroAndOfALevelNearOne)
{
    std::vector<std::uint8_t> checks;
    for (int i = 0; i < 64 * 64; ++i) {
        checks.push_back(static_cast<std::uint8_t>((i / 64 + i % 64) % 2 * 200));
    }
    const std::vector<std::uint8_t> flat(64 * 64, 100);
    EXPECT_LT(Compare(View(checks, 64), View(flat, 64)).ssim, 0.02);
    std::vector<std::uint8_t> brighter = checks;
    for (std::uint8_t& sample : brighter) {
        sample = static_cast<std::uint8_t>(sample + 5);
    }
    EXPECT_GT(Compare(View(checks, 64), View(brighter, 64)).ssim, 0.99);
}

/// Noise on a ramp, in codes of any size.
template <class Sample>
std::vector<Sample> Noisy(int width, int height, unsigned seed, double fullScale)
{
    std::mt19937 random(seed); // NOLINT: the same noise each time
    std::uniform_real_distribution<double> noise(-0.05, 0.05);
    std::vector<Sample> samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            samples.push_back(static_cast<Sample>((0.2 + 0.5 * x / width + noise(random)) * fullScale));
        }
    }
    return samples;
}

template <class Sample>
read::ComponentView ViewOf(const std::vector<Sample>& samples, int width, int bits, bool isFloat = false)
{
    read::ComponentView view;
    view.first = reinterpret_cast<const std::byte*>(samples.data());
    view.step = sizeof(Sample);
    view.rowBytes = static_cast<std::ptrdiff_t>(sizeof(Sample)) * width;
    view.width = width;
    view.height = static_cast<int>(samples.size()) / width;
    view.bits = bits;
    view.sampleBytes = sizeof(Sample);
    view.isFloat = isFloat;
    return view;
}

/// The definitions, sample by sample and window by window.
template <class Sample>
void ExpectByDefinition(int width, int height, int bits, double fullScale, bool isFloat = false)
{
    const auto a = Noisy<Sample>(width, height, 1, fullScale);
    const auto b = Noisy<Sample>(width, height, 2, fullScale);
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double off = static_cast<double>(a[i]) - static_cast<double>(b[i]);
        squares += off * off;
    }
    double ssim = 0;
    int windows = 0;
    for (int top = 0; top + 8 <= height; top += 4) {
        for (int left = 0; left + 8 <= width; left += 4) {
            double meanA = 0;
            double meanB = 0;
            const auto each = [&](auto use) {
                for (int y = top; y < top + 8; ++y) {
                    for (int x = left; x < left + 8; ++x) {
                        const auto at = static_cast<std::size_t>(y * width + x);
                        use(static_cast<double>(a[at]), static_cast<double>(b[at]));
                    }
                }
            };
            each([&](double valueA, double valueB) {
                meanA += valueA / 64;
                meanB += valueB / 64;
            });
            double varianceA = 0;
            double varianceB = 0;
            double covariance = 0;
            each([&](double valueA, double valueB) {
                varianceA += (valueA - meanA) * (valueA - meanA) / 64;
                varianceB += (valueB - meanB) * (valueB - meanB) / 64;
                covariance += (valueA - meanA) * (valueB - meanB) / 64;
            });
            const double c1 = std::pow(0.01 * fullScale, 2);
            const double c2 = std::pow(0.03 * fullScale, 2);
            ssim += (2 * meanA * meanB + c1) * (2 * covariance + c2) /
                    ((meanA * meanA + meanB * meanB + c1) * (varianceA + varianceB + c2));
            ++windows;
        }
    }
    const PlaneLikeness likeness = Compare(ViewOf(a, width, bits, isFloat), ViewOf(b, width, bits, isFloat));
    EXPECT_NEAR(likeness.psnr,
                10 * std::log10(fullScale * fullScale / (squares / static_cast<double>(a.size()))), 1e-6);
    EXPECT_NEAR(likeness.ssim, ssim / windows, 1e-6);
    EXPECT_FALSE(likeness.isEqual);
}

TEST(Fidelity, AnyDepthAndAnySizeIsMeasuredByTheDefinition)
{
    // Wider than a strip of columns, and no multiple of a block.
    ExpectByDefinition<std::uint8_t>(535, 43, 8, 255);
    ExpectByDefinition<std::uint16_t>(61, 30, 10, 1023);
    ExpectByDefinition<std::uint16_t>(261, 18, 16, 65535);
    ExpectByDefinition<float>(40, 21, 32, 1, true);
}

TEST(Fidelity, BandsAddUpToTheirRows)
{
    const auto a = Noisy<std::uint8_t>(64, 32, 1, 255);
    std::vector<std::uint8_t> b = a;
    b[64 * 20 + 33] ^= 0x40; // row 20, column 33
    const read::ComponentView expected = ViewOf(a, 64, 8);
    const read::ComponentView found = ViewOf(b, 64, 8);
    PlaneComparison bands;
    for (const int top : {0, 16}) {
        const auto band = [top](read::ComponentView view) {
            view.first += top * view.rowBytes;
            view.height = 16;
            return view;
        };
        bands.Add(band(expected), band(found), top);
    }
    const PlaneLikeness likeness = bands.Result();
    EXPECT_NEAR(likeness.psnr, Compare(expected, found).psnr, 1e-9);
    EXPECT_FALSE(likeness.isEqual);
    EXPECT_LT(likeness.worstSsim, likeness.ssim);
    EXPECT_TRUE(likeness.worstY <= 20 && 20 < likeness.worstY + 8) << likeness.worstY;
    EXPECT_TRUE(likeness.worstX <= 33 && 33 < likeness.worstX + 8) << likeness.worstX;
}

TEST(Fidelity, BlocksAndLostStepsAreCounted)
{
    // A slanted ramp; what came back is the mean of each 8 x 8 block.
    std::vector<std::uint8_t> ramp;
    std::vector<std::uint8_t> blocks;
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            ramp.push_back(static_cast<std::uint8_t>(40 + x + y));
            blocks.push_back(static_cast<std::uint8_t>(40 + (x / 8 + y / 8) * 8 + 7));
        }
    }
    const Artefacts artefacts = MeasureArtefacts(View(ramp, 64), View(blocks, 64));
    // Inside a block the error falls by 1 a column; at its edge it rises by 7.
    EXPECT_NEAR(artefacts.Blocking(), 7, 1e-9);
    // Rows 1, 5, 9, ... begin no block, so that every step to them is lost.
    EXPECT_NEAR(artefacts.Banding(), 1, 1e-9);
    const Artefacts none = MeasureArtefacts(View(ramp, 64), View(ramp, 64));
    EXPECT_EQ(none.Blocking(), 1);
    EXPECT_EQ(none.Banding(), 0);
}

} // namespace
} // namespace tessel::verify::judge
