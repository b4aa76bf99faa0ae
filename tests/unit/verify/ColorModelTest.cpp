#include <tessel/verify/catalogue/Names.h>
#include <tessel/verify/judge/color/hypotheses/Curves.h>
#include <tessel/verify/judge/color/hypotheses/Hypothesis.h>
#include <tessel/verify/judge/color/hypotheses/Levels.h>

#include <gtest/gtest.h>

#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr Coding kBt709{false, 1, false};
constexpr Coding kBt601{false, 6, false};

/// Bars, greys and odd colours, all inside 0..1.
std::vector<ColorPair> Chart()
{
    std::vector<ColorPair> pairs;
    for (const Triple& rgb :
         {Triple{1, 0.5, 0.25}, Triple{0.75, 0, 0}, Triple{0, 0.75, 0}, Triple{0, 0, 0.75},
          Triple{0.75, 0.75, 0}, Triple{0, 0.75, 0.75}, Triple{0.75, 0, 0.75}, Triple{0.1, 0.1, 0.1},
          Triple{0.5, 0.5, 0.5}, Triple{0.9, 0.9, 0.9}, Triple{0.8, 0.6, 0.5}, Triple{0.2, 0.3, 0.7}}) {
        pairs.push_back({rgb, 1, {}, 1, rgb});
    }
    return pairs;
}

TEST(ColorModel, CodesAreThoseOfTheStandards)
{
    // Worked out by BT.601-7 and BT.709-6: 601 gives 152, 81, 189 and 709 gives 145, 87, 187.
    const Triple in601 = Encode(kBt601, {1, 0.5, 0.25});
    const Triple in709 = Encode(kBt709, {1, 0.5, 0.25});
    const Triple kExpected601{152, 81, 189};
    const Triple kExpected709{145, 87, 187};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(std::floor(in601[i] + 0.5), kExpected601[i]);
        EXPECT_EQ(std::floor(in709[i] + 0.5), kExpected709[i]);
    }
}

TEST(ColorModel, DecodingUndoesEncoding)
{
    for (const Coding& coding :
         {kBt709, kBt601, Coding{false, 9, true}, Coding{false, 7, false}, Coding{true, 0, true}}) {
        const Triple back = Decode(coding, Encode(coding, {0.2, 0.3, 0.7}));
        EXPECT_NEAR(back[0], 0.2, 1e-12);
        EXPECT_NEAR(back[1], 0.3, 1e-12);
        EXPECT_NEAR(back[2], 0.7, 1e-12);
    }
}

TEST(ColorModel, CurvesUndoTheirInverses)
{
    for (const Curve& curve : kCurves) {
        for (const double value : {0.0, 0.01, 0.05, 0.3, 1.0}) {
            EXPECT_NEAR(curve.toLight(curve.toSignal(value)), value, 1e-6) << curve.name;
        }
    }
    // BT.709-6: ((0.5 + 0.0993) / 1.0993)^(1 / 0.45) = 0.2597; IEC 61966-2-1: (0.555 / 1.055)^2.4 = 0.2140.
    EXPECT_NEAR(curves::LightOf709(0.5), 0.2597, 1e-4);
    EXPECT_NEAR(curves::LightOfSrgb(0.5), 0.2140, 1e-4);
}

TEST(ColorModel, EveryExplanationIsTheBestOfWhatItMakes)
{
    for (const Coding& coding : {kBt709, kBt601, Coding{true, 0, true}}) {
        const std::vector<Hypothesis> list = Hypotheses(coding);
        for (const Hypothesis& truth : list) {
            std::vector<ColorPair> pairs = Chart();
            for (ColorPair& pair : pairs) {
                pair.alpha = 0.5;
                pair.found = truth.predict(pair);
            }
            if (!truth.ids.empty() && DistanceOf(truth, list.front(), pairs) < 0.5) {
                continue; // nothing of it shows in these colours
            }
            for (const Hypothesis& other : list) {
                if (DistanceOf(truth, other, pairs) > 0.01) {
                    EXPECT_GT(ResidualOf(other, pairs), ResidualOf(truth, pairs))
                        << truth.message << " / " << other.message;
                }
            }
        }
    }
}

TEST(ColorModel, MatricesAreTenCodesApartOnAChart)
{
    const std::vector<Hypothesis> list = Hypotheses(kBt709);
    bool seen = false;
    for (const Hypothesis& hypothesis : list) {
        if (hypothesis.ids.size() == 1 && hypothesis.ids[0] == id::kColorMatrix &&
            hypothesis.message == "codes are BT.601 (525 lines) where BT.709 is right") {
            seen = true;
            EXPECT_GT(DistanceOf(list.front(), hypothesis, Chart()), 5);
        }
    }
    EXPECT_TRUE(seen);
}

TEST(ColorModel, LevelsAreFittedExactly)
{
    std::vector<ColorPair> pairs = Chart();
    const double angle = 10 * 3.14159265358979323846 / 180;
    for (ColorPair& pair : pairs) {
        const Triple codes = Encode(kBt709, pair.rgb);
        const double u = codes[1] - 128;
        const double v = codes[2] - 128;
        pair.found = {16 + 0.9 * (codes[0] - 16) + 3, 128 + 0.8 * (u * std::cos(angle) - v * std::sin(angle)),
                      128 + 0.8 * (u * std::sin(angle) + v * std::cos(angle))};
    }
    const LevelFit fit = FitLevels(pairs, kBt709, 0.25);
    EXPECT_NEAR(fit.gain, 0.9, 1e-9);
    EXPECT_NEAR(fit.offset, 3, 1e-9);
    EXPECT_NEAR(fit.saturation, 0.8, 1e-9);
    EXPECT_NEAR(fit.hueDegrees, 10, 1e-9);
    EXPECT_LT(fit.residual, 1e-9);
}

TEST(ColorModel, GreyTellsNeitherSaturationNorHue)
{
    std::vector<ColorPair> pairs;
    for (const double level : {0.1, 0.5, 0.9}) {
        pairs.push_back(
            {{level, level, level}, 1, Encode(kBt709, {level, level, level}), 1, {level, level, level}});
    }
    const LevelFit fit = FitLevels(pairs, kBt709, 0.25);
    EXPECT_TRUE(fit.hasLuma);
    EXPECT_FALSE(fit.hasChroma);
}

} // namespace
} // namespace tessel::verify::judge
