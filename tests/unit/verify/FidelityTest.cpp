#include <tessel/verify/judge/fidelity/FidelityJudge.h>

#include <gtest/gtest.h>

#include <cmath>
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

} // namespace
} // namespace tessel::verify::judge
