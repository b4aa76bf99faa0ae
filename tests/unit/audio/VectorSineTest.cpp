#include "AudioTestSupport.h"

#include <ImporterTessel/audio/VectorSine.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <vector>

namespace {

using audiotest::Bits;
using ImporterTessel::FillSines;
using ImporterTessel::kLargestVectorPhase;
using ImporterTessel::VectorWidth;
using qelaccelerate::HasVectorWidth;

constexpr std::array kWidths{VectorWidth::Baseline, VectorWidth::Avx2, VectorWidth::Avx512};

/// Phases of every magnitude up to the bound, of both signs.
std::vector<double> RandomPhases(std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> mantissa(0.5, 1.0);
    std::uniform_int_distribution<int> exponent(-30, 24);
    std::bernoulli_distribution sign;
    std::vector<double> phases(count);
    std::generate(phases.begin(), phases.end(),
                  [&] { return std::ldexp(mantissa(random), exponent(random)) * (sign(random) ? 1.0 : -1.0); });
    return phases;
}

/// The doubles around whole, half and quarter multiples of pi, where sines pass zero, turn, or where the
/// reduction changes sides; the multiples all over the range.
std::vector<double> PhasesBesideMultiplesOfPi()
{
    std::vector<double> phases;
    const auto add = [&](double multiple) {
        const auto nearest =
            static_cast<double>(static_cast<long double>(multiple) * 3.14159265358979323846264L);
        double below = nearest;
        double above = nearest;
        phases.push_back(nearest);
        for (int step = 0; step < 4; ++step) {
            below = std::nextafter(below, -1e9);
            above = std::nextafter(above, 1e9);
            phases.insert(phases.end(), {below, above, -below, -above});
        }
    };
    for (double multiple = 0.25; multiple < 1000.0; multiple += 0.25) {
        add(multiple);
    }
    for (double multiple = 1000.0; multiple * 3.1415927 < kLargestVectorPhase; multiple += 96.75) {
        add(multiple);
    }
    return phases;
}

/// Compares with the C library's sine: at most one unit in the last place apart, and rarely.
void ExpectCLibrarySines(const std::vector<double>& phases, double amplitude, std::size_t allowedDifferences)
{
    std::vector<float> sines(phases.size());
    FillSines(phases, amplitude, sines.data(), qelaccelerate::WidestVectors());
    std::size_t differences = 0;
    for (std::size_t k = 0; k < phases.size(); ++k) {
        const auto expected = static_cast<float>(std::sin(phases[k]) * amplitude);
        ASSERT_LE(audiotest::UnitsApart(sines[k], expected), 1U)
            << std::hexfloat << "sin(" << phases[k] << ") is " << sines[k] << ", not " << expected << "; "
            << audiotest::SeedText();
        differences += Bits(sines[k]) != Bits(expected) ? 1U : 0U;
    }
    EXPECT_LE(differences, allowedDifferences) << "of " << phases.size() << "; " << audiotest::SeedText();
}

// The header promises about one in ten million. 4 in 3 million, 13 times that, does not happen by chance.
TEST(VectorSine, IsTheCLibrarysOnRandomPhases)
{
    ExpectCLibrarySines(RandomPhases(3'000'000, audiotest::Seed()), 0.125, 4);
}

TEST(VectorSine, IsTheCLibrarysBesideMultiplesOfPi)
{
    ExpectCLibrarySines(PhasesBesideMultiplesOfPi(), 1.0, 2);
}

TEST(VectorSine, IsTheCLibrarysOverARunningTone)
{
    std::vector<double> phases(2'000'000);
    double phase = 0.0;
    for (double& value : phases) {
        value = phase;
        phase += 7.3; // reaches 14.6 million
    }
    ASSERT_LT(phases.back(), kLargestVectorPhase);
    ExpectCLibrarySines(phases, static_cast<double>(0.7F), 3);
}

TEST(VectorSine, GivesTheSameBitsInEveryWidth)
{
    std::vector<double> phases = RandomPhases(200'000, audiotest::Seed());
    std::ranges::copy(PhasesBesideMultiplesOfPi(), std::back_inserter(phases));
    std::vector<float> baseline(phases.size());
    FillSines(phases, 0.3, baseline.data(), VectorWidth::Baseline);
    for (const VectorWidth width : kWidths) {
        if (HasVectorWidth(width)) {
            std::vector<float> sines(phases.size());
            FillSines(phases, 0.3, sines.data(), width);
            EXPECT_TRUE(audiotest::SameBits(sines, baseline))
                << "width " << static_cast<int>(width) << "; " << audiotest::SeedText();
        }
    }
}

TEST(VectorSine, DoesNotDependOnWhereAPhaseStandsInTheRow)
{
    const std::vector<double> phases = RandomPhases(300, audiotest::Seed());
    std::vector<float> whole(phases.size());
    FillSines(phases, 0.3, whole.data(), qelaccelerate::WidestVectors());
    for (std::size_t k = 0; k < phases.size(); ++k) {
        float alone = 0.0F;
        FillSines(std::span(phases).subspan(k, 1), 0.3, &alone, qelaccelerate::WidestVectors());
        EXPECT_EQ(Bits(alone), Bits(whole[k])) << audiotest::SeedText();
    }
}

TEST(VectorSine, WritesAsManySamplesAsThereArePhases)
{
    const std::vector<double> phases(70, 1.0);
    for (const VectorWidth width : kWidths) {
        for (std::size_t count = 0; HasVectorWidth(width) && count <= phases.size(); ++count) {
            const audiotest::Buffers buffers(1, static_cast<std::uint32_t>(count));
            FillSines(std::span(phases).first(count), 0.25, buffers.Channels()[0], width);
            EXPECT_TRUE(buffers.GuardsStand()) << count;
            EXPECT_TRUE(buffers.IsWritten(0)) << count;
        }
    }
}

TEST(VectorSine, KeepsTheSignsOfZeros)
{
    const std::array<double, 2> phases{0.0, -0.0};
    std::array<float, 2> sines{};
    FillSines(phases, 0.5, sines.data(), qelaccelerate::WidestVectors());
    EXPECT_EQ(Bits(sines[0]), Bits(0.0F));
    EXPECT_EQ(Bits(sines[1]), Bits(-0.0F));
    FillSines(phases, -0.5, sines.data(), qelaccelerate::WidestVectors());
    EXPECT_EQ(Bits(sines[0]), Bits(-0.0F));
}

TEST(VectorSine, TakesAnyAmplitude)
{
    const std::array<double, 3> phases{1.0, -1.0, 2.0};
    std::array<float, 3> sines{};
    for (const double amplitude :
         {0.0, -1.0, 1e-30, 1e-44, static_cast<double>(std::numeric_limits<float>::max())}) {
        FillSines(phases, amplitude, sines.data(), qelaccelerate::WidestVectors());
        for (std::size_t k = 0; k < phases.size(); ++k) {
            EXPECT_EQ(Bits(sines[k]), Bits(static_cast<float>(std::sin(phases[k]) * amplitude))) << amplitude;
        }
    }
    FillSines(phases, std::numeric_limits<double>::infinity(), sines.data(), qelaccelerate::WidestVectors());
    EXPECT_EQ(sines[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(sines[1], -std::numeric_limits<float>::infinity());
}

} // namespace
