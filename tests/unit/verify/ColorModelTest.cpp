#include <tessel/verify/catalogue/Names.h>
#include <tessel/verify/judge/color/hypotheses/Clipping.h>
#include <tessel/verify/judge/color/hypotheses/Curves.h>
#include <tessel/verify/judge/color/hypotheses/Hypothesis.h>
#include <tessel/verify/judge/color/hypotheses/Levels.h>

#include <gtest/gtest.h>

#include <algorithm>
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

TEST(ColorModel, GainIsFoundOnSaturatedColoursThatClip)
{
    // All but one component are at an end of their range, before or afterwards.
    constexpr Coding kRgb{true, 0, true};
    std::vector<ColorPair> pairs{{{1, 0.5, 0}, 1, {229.5, 114.75, 0}, 1, {1, 0.5, 0}}};
    for (const Triple& rgb : {Triple{1, 0, 0}, Triple{0, 1, 0}, Triple{0, 0, 1}, Triple{1, 1, 0},
                              Triple{0, 1, 1}, Triple{1, 1, 1}, Triple{0, 0, 0}}) {
        pairs.push_back({rgb, 1, {rgb[0] * 229.5, rgb[1] * 229.5, rgb[2] * 229.5}, 1, rgb});
    }
    const LevelFit fit = FitLevels(pairs, kRgb, 0.25);
    EXPECT_NEAR(fit.gain, 0.9, 1e-6);
    EXPECT_TRUE(fit.chromaIsLikeLuma);
    EXPECT_EQ(fit.offset, 0);
    EXPECT_EQ(fit.hueDegrees, 0);
}

TEST(ColorModel, GainAndOffsetLookAlikeWhereOnlyTheEndsAreSeen)
{
    // 0 stays 0 and 255 becomes 229.5, be it × 0.9 or - 25.5 with clipping.
    constexpr Coding kRgb{true, 0, true};
    std::vector<ColorPair> pairs;
    for (const Triple& rgb : {Triple{1, 0, 0}, Triple{0, 1, 0}, Triple{0, 0, 1}, Triple{1, 1, 1}}) {
        pairs.push_back({rgb, 1, {rgb[0] * 229.5, rgb[1] * 229.5, rgb[2] * 229.5}, 1, rgb});
    }
    EXPECT_TRUE(FitLevels(pairs, kRgb, 0.25).isGainOrOffset);
}

TEST(ColorModel, OffsetIsFoundWhereWhiteClips)
{
    constexpr Coding kRgb{true, 0, true};
    std::vector<ColorPair> pairs = Chart();
    for (ColorPair& pair : pairs) {
        for (std::size_t part = 0; part < 3; ++part) {
            pair.found[part] = std::min(255.0, pair.rgb[part] * 255 + 40);
        }
    }
    const LevelFit fit = FitLevels(pairs, kRgb, 0.25);
    EXPECT_NEAR(fit.offset, 40, 0.01);
    EXPECT_EQ(fit.gain, 1);
}

TEST(ColorModel, ExchangedChromaOfRgbIsToldByItsMatrix)
{
    // Red by BT.709: Y' 0.2126, Cb -0.1146, Cr 0.5. Exchanged: R' = 0.2126 - 1.5748 × 0.1146 = 0.0322,
    // B' = 0.2126 + 1.8556 × 0.5 = 1.1404, which clips.
    const std::vector<Hypothesis> list = Hypotheses({true, 0, true});
    const ColorPair red{{1, 0, 0}, 1, {}, 1, {1, 0, 0}};
    int seen = 0;
    for (const Hypothesis& hypothesis : list) {
        if (hypothesis.ids.size() == 1 && hypothesis.ids[0] == id::kColorChromaSwapped &&
            hypothesis.message.find("BT.709") != std::string::npos) {
            ++seen;
            EXPECT_NEAR(hypothesis.predict(red)[0], 0.0322 * 255, 0.1);
            EXPECT_EQ(hypothesis.predict(red)[2], 255);
        }
    }
    EXPECT_EQ(seen, 1);
}

TEST(ColorModel, MixedChromaOfFieldsIsTheirMean)
{
    const std::vector<Hypothesis> list = Hypotheses(kBt709);
    const ColorPair pair{{0.75, 0, 0}, 1, {}, 1, {0, 0, 0.75}};
    const Triple own = Encode(kBt709, pair.rgb);
    const Triple other = Encode(kBt709, pair.otherField);
    int seen = 0;
    for (const Hypothesis& hypothesis : list) {
        if (hypothesis.ids.size() == 1 && hypothesis.ids[0] == id::kColorSubsampling) {
            ++seen;
            EXPECT_DOUBLE_EQ(hypothesis.predict(pair)[0], own[0]);
            EXPECT_DOUBLE_EQ(hypothesis.predict(pair)[1], (own[1] + other[1]) / 2);
        }
    }
    EXPECT_EQ(seen, 1);
}

/// Luma from below black to above white.
std::vector<ColorPair> SuperWhites()
{
    std::vector<ColorPair> pairs;
    for (const double level : {-0.06, -0.03, 0.0, 0.25, 0.5, 0.75, 1.0, 1.04, 1.08}) {
        pairs.push_back({{level, level, level}, 1, {}, 1, {level, level, level}});
    }
    return pairs;
}

TEST(Clipping, LevelsAreWhereCodesWereCutOff)
{
    std::vector<ColorPair> pairs = SuperWhites();
    for (ColorPair& pair : pairs) {
        pair.found = Encode(kBt709, pair.rgb);
        pair.found[0] = std::clamp(pair.found[0], 16.0, 235.0);
    }
    const auto fit = FitClipping(kBt709, pairs, 1.25);
    ASSERT_TRUE(fit);
    EXPECT_EQ(fit->patches, 4); // -0.06, -0.03, 1.04, 1.08
    EXPECT_LT(fit->residual, 1e-9);
    EXPECT_EQ(fit->hypothesis.found.front(), "16..235");
    EXPECT_TRUE(ShowsClipping(kBt709, pairs, 1.25));
}

TEST(Clipping, CodesThatCameBackAreNotCutOff)
{
    std::vector<ColorPair> pairs = SuperWhites();
    for (ColorPair& pair : pairs) {
        pair.found = Encode(kBt709, pair.rgb);
    }
    EXPECT_FALSE(FitClipping(kBt709, pairs, 1.25));
}

TEST(Clipping, OneGreyThatMovedWasNotCutOff)
{
    const std::vector<ColorPair> pairs(5, {{0.5, 0.5, 0.5}, 1, {138, 128, 128}, 1, {0.5, 0.5, 0.5}});
    EXPECT_FALSE(FitClipping(kBt709, pairs, 1.25));
}

TEST(Clipping, ColoursInsideTheRangeDoNotShowIt)
{
    std::vector<ColorPair> pairs = Chart();
    EXPECT_FALSE(ShowsClipping(kBt709, pairs, 1.25));
    EXPECT_FALSE(ShowsClipping({true, 0, true}, SuperWhites(), 1.25)); // integer R'G'B' holds nothing outside
    EXPECT_TRUE(ShowsClipping({true, 0, true, true}, SuperWhites(), 1.25));
}

} // namespace
} // namespace tessel::verify::judge
