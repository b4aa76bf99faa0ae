// One colour in each format: against the table of known codes, and against exact arithmetic.
#include <kestrel/pixmill/ColorConversion.h>

#include <gtest/gtest.h>
#include <support/GuardedFrame.h>
#include <support/PaintableFormats.h>
#include <support/ReferenceColor.h>

#include <cmath>
#include <limits>
#include <random>

using namespace pixmill;
using namespace testsupport;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kLargest = std::numeric_limits<float>::max();

std::uint32_t PixelsOfPattern(std::uint32_t code)
{
    const PixelGroup group = GroupOf(code);
    return 16 / group.bytes * group.pixels;
}

/// Whether floats are equal, zeros of either sign too.
bool SameNumbers(std::span<const std::byte> actual, std::span<const std::byte> expected)
{
    std::array<float, 4> a{};
    std::array<float, 4> e{};
    std::memcpy(a.data(), actual.data(), sizeof(a));
    std::memcpy(e.data(), expected.data(), sizeof(e));
    return a == e;
}

/// Compares the 16 bytes of the pattern with a row of as many pixels by the reference.
::testing::AssertionResult MatchesReference(const PaintableFormat& format, const ReferenceColor& color)
{
    const StoredColor stored = ConvertColor(format.code, {color.blue, color.green, color.red, color.alpha});
    const auto expected = ReferenceFormat(format.name).Row(PixelsOfPattern(format.code), color);
    ::testing::AssertionResult result = SameBytes(stored.pattern, expected);
    if (!result && (format.code & kBitFloat) != 0 && SameNumbers(stored.pattern, expected)) {
        return ::testing::AssertionSuccess();
    }
    if (!result) {
        result << std::hexfloat << "\n  " << format.name << ", blue " << color.blue << ", green " << color.green
               << ", red " << color.red << ", alpha " << color.alpha;
    }
    return result;
}

struct KnownCodes {
    float red, green, blue;
    int y601, cb601, cr601, y601In10, cb601In10, cr601In10;
    int y709, cb709, cr709, y709In10, cb709In10, cr709In10;
};

// After BT.601-7 and BT.709-6; checked against zimg when they were written down.
constexpr KnownCodes kKnown[] = {
    {1, .5F, .25F, 152, 81, 189, 608, 324, 754, 145, 87, 187, 579, 349, 746},
    {0, 1, 0, 145, 54, 34, 578, 215, 137, 173, 42, 26, 691, 167, 105},
    {1, 0, 0, 81, 90, 240, 326, 361, 960, 63, 102, 240, 250, 409, 960},
    {0, 0, 1, 41, 240, 110, 164, 960, 439, 32, 240, 118, 127, 960, 471},
    {1, 1, 1, 235, 128, 128, 940, 512, 512, 235, 128, 128, 940, 512, 512},
};

} // namespace

TEST(ColorConversion, KnownColorsMakeTheKnownCodes)
{
    for (const KnownCodes& k : kKnown) {
        const ColorBGRA color = {k.blue, k.green, k.red, 1};
        const auto vuya = [](int y, int cb, int cr) {
            return std::array{std::byte(cr), std::byte(cb), std::byte(y), std::byte{255}};
        };
        const auto in601 = ConvertColor(0x00D, color).pattern;
        const auto in709 = ConvertColor(0x80D, color).pattern;
        EXPECT_TRUE(SameBytes(std::span(in601).first(4), vuya(k.y601, k.cb601, k.cr601)));
        EXPECT_TRUE(SameBytes(std::span(in709).first(4), vuya(k.y709, k.cb709, k.cr709)));
        // The first word of a v210 group: Cb, Y, Cr from its lowest bit.
        const auto firstWord = [&](std::uint32_t code) {
            std::uint32_t word = 0;
            std::memcpy(&word, ConvertColor(code, color).pattern.data(), 4);
            return word;
        };
        EXPECT_EQ(firstWord(0x211), std::uint32_t(k.cb601In10 | k.y601In10 << 10 | k.cr601In10 << 20));
        EXPECT_EQ(firstWord(0xA11), std::uint32_t(k.cb709In10 | k.y709In10 << 10 | k.cr709In10 << 20));
    }
}

TEST(ColorConversion, EveryFormatEqualsExactArithmeticOnRandomColors)
{
    std::mt19937 random(210);
    std::uniform_real_distribution<float> component(-1.5F, 2.5F);
    for (const PaintableFormat& format : PaintableFormats()) {
        for (int i = 0; i < 2000; ++i) {
            const ReferenceColor color{component(random), component(random), component(random),
                                       component(random)};
            ASSERT_TRUE(MatchesReference(format, color)) << "seed 210, color " << i;
        }
    }
}

// Components in steps of 1/200 of a grey's luma range and simple fractions put many codes exactly on a tie.
TEST(ColorConversion, TiesAreRoundedUp)
{
    std::mt19937 random(2);
    std::uniform_int_distribution<int> sixteenths(-16, 32);
    const auto fraction = [&] { return static_cast<float>(sixteenths(random)) / 16; };
    int ties = 0;
    for (const PaintableFormat& format : PaintableFormats()) {
        for (int i = 0; i < 4000; ++i) {
            const float red = fraction();
            const float green = i % 2 == 0 ? red : fraction();
            const ReferenceColor color{i % 4 < 2 ? green : fraction(), green, red, fraction()};
            ASSERT_TRUE(MatchesReference(format, color));
            const float luma = 219 * red + 16; // exact in float: 12 bits
            ties += color.blue == red && green == red && luma - std::floor(luma) == 0.5F ? 1 : 0;
        }
    }
    EXPECT_GT(ties, 1000);
    // 219·0.5 + 16 = 125.5
    EXPECT_EQ(ConvertColor(0x00D, {.5F, .5F, .5F, 1}).pattern[2], std::byte{126});
    EXPECT_EQ(ConvertColor(0x80D, {.5F, .5F, .5F, 1}).pattern[2], std::byte{126});
    // 255·0.5 = 127.5
    EXPECT_EQ(ConvertColor(0x00C, {.5F, .5F, .5F, 1}).pattern[0], std::byte{128});
    // A hair below the tie, in premultiplied: the product has 48 bits.
    const float below = std::nextafter(1.0F, 0.0F);
    EXPECT_EQ(ConvertColor(0x04C, {.5F, .5F, .5F, below}).pattern[0], std::byte{127});
}

TEST(ColorConversion, GreysHaveNeutralChromaAtEveryLevel)
{
    std::mt19937 random(128);
    std::uniform_real_distribution<float> level(-3, 3);
    for (int i = 0; i < 10000; ++i) {
        const float grey = level(random);
        const ColorBGRA color = {grey, grey, grey, level(random)};
        for (const std::uint32_t code : {0x00DU, 0x80DU, 0x04DU, 0x84DU}) {
            const auto pattern = ConvertColor(code, color).pattern;
            ASSERT_EQ(pattern[0], std::byte{128}) << grey;
            ASSERT_EQ(pattern[1], std::byte{128}) << grey;
        }
        for (const std::uint32_t code : {0x105U, 0x905U, 0x145U, 0x945U}) {
            std::array<float, 4> vuya{};
            std::memcpy(vuya.data(), ConvertColor(code, color).pattern.data(), 16);
            ASSERT_EQ(vuya[0], 0) << grey;
            ASSERT_EQ(vuya[1], 0) << grey;
        }
    }
}

TEST(ColorConversion, NaNInfinitiesAndNumbersOutOfRangeFollowTheRules)
{
    const float odd[] = {kNaN,  -kNaN, kInfinity, -kInfinity, -1,     2,   0,
                         -0.0F, 1,     kLargest,  -kLargest,  1e-45F, 0.5F};
    for (const PaintableFormat& format : PaintableFormats()) {
        for (const float blue : odd) {
            for (const float green : odd) {
                for (const float red : odd) {
                    for (const float alpha : {kNaN, -kInfinity, kInfinity, -1.0F, 2.0F, 1.0F}) {
                        ASSERT_TRUE(MatchesReference(format, {blue, green, red, alpha}));
                    }
                }
            }
        }
    }
}

TEST(ColorConversion, OuterCodesStayFreeForTiming)
{
    const auto vuya = ConvertColor(0x80D, {kInfinity, 9, 9, 1}).pattern;
    EXPECT_EQ(vuya[1], std::byte{254}); // Cb
    EXPECT_EQ(vuya[2], std::byte{254}); // Y
    EXPECT_EQ(ConvertColor(0x80D, {-9, -9, -9, 1}).pattern[2], std::byte{1});
    std::uint32_t word = 0;
    std::memcpy(&word, ConvertColor(0xA11, {9, 2, -9, 1}).pattern.data(), 4);
    EXPECT_EQ(word & 1023U, 1019U);    // Cb
    EXPECT_EQ(word >> 20 & 1023U, 4U); // Cr
    EXPECT_EQ(ConvertColor(0x00C, {9, -9, 1, 9}).pattern[0], std::byte{255});
    EXPECT_EQ(ConvertColor(0x00C, {9, -9, 1, 9}).pattern[1], std::byte{0});
}

TEST(ColorConversion, PlainFloatTakesComponentsBitForBit)
{
    std::array<float, 4> odd{};
    const std::array<std::uint32_t, 4> bits = {0x7FC12345, 0xFF800000, 0x80000001, 0x7F812345};
    std::memcpy(odd.data(), bits.data(), 16);
    for (const std::uint32_t code : {0x104U, 0x184U}) {
        std::array<std::uint32_t, 4> stored{};
        std::memcpy(stored.data(), ConvertColor(code, odd).pattern.data(), 16);
        EXPECT_EQ(stored[0], bits[0]) << "a NaN keeps its payload";
        EXPECT_EQ(stored[1], bits[1]);
        EXPECT_EQ(stored[2], bits[2]);
        EXPECT_EQ(stored[3], code == 0x104U ? bits[3] : 0x3F800000U);
    }
}

TEST(ColorConversion, ComponentsThatCancelAreSummedWithoutLoss)
{
    std::mt19937 random(1997);
    std::uniform_real_distribution<float> large(-1e6F, 1e6F);
    std::uniform_real_distribution<float> unit(-1, 1);
    for (const PaintableFormat& format : PaintableFormats()) {
        if (ReferenceFormat(format.name).IsFloat()) {
            continue;
        }
        for (int i = 0; i < 500; ++i) {
            // Y' = 0.299·R + 0.587·G + 0.114·B with large terms that nearly cancel.
            const float red = large(random);
            const float blue = i % 2 == 0 ? unit(random) : -red * 0.299F / 0.114F;
            const float green = i % 2 == 0 ? -red * 0.299F / 0.587F : unit(random);
            ASSERT_TRUE(MatchesReference(format, {blue, green, red, 1}));
        }
    }
}

// BT.709-6: V = 4.5·L below 0.018, else 1.099·L^0.45 - 0.099, with the constants that make it continuous.
// (zimg is no oracle here: it takes BT.709 pictures as meant for a BT.1886 display.)
TEST(ColorConversion, ASumKeepsItsSignWhereItsLargestTermsCancel)
{
    // Red = green = 25/32, blue 0: Y' = 0.886·25/32, Cb = -Y'/1.772 = -25/64, 224·Cb + 128 = 40.5, which rounds
    // up. A blue just below 0 moves Cb below the tie by 0.5·|blue|: all that is left once the rest has
    // cancelled.
    struct Row {
        float blue;
        int cb;
    };
    for (const Row& row : {Row{0.0F, 41}, Row{-1e-20F, 40}, Row{1e-20F, 41}, Row{-1e-45F, 40}}) {
        const StoredColor stored = ConvertColor(0x0D, {row.blue, 0.78125F, 0.78125F, 1.0F});
        EXPECT_EQ(std::to_integer<int>(stored.pattern[1]), row.cb) << row.blue; // V, U, Y, A in memory
    }
}

TEST(ColorConversion, LinearLightGoesBackThroughTheCameraCurve)
{
    const auto curve = [](double light) {
        const double magnitude = std::abs(light);
        const double signal = magnitude < 0.018053968510807
                                  ? 4.5 * magnitude
                                  : 1.09929682680944 * std::pow(magnitude, 0.45) - 0.09929682680944;
        return std::copysign(signal, light);
    };
    for (int i = -3000; i <= 3000; ++i) {
        const float signal = static_cast<float>(i) / 1000;
        std::array<float, 4> light{};
        std::memcpy(light.data(), ConvertColor(0x504, {signal, 0, 1, .25F}).pattern.data(), sizeof(light));
        ASSERT_NEAR(curve(light[0]), signal, 5e-7);
        ASSERT_EQ(light[1], 0);
        ASSERT_NEAR(light[2], 1, 1e-12);
        ASSERT_EQ(light[3], .25F) << "alpha is not light";
    }
}
