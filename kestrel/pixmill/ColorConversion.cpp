#include "ColorConversion.h"

#include "CodeValues.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace pixmill {
namespace {

/// KR, 1-KR-KB and KB as integers over one denominator: exact, unlike any binary fraction.
struct Matrix {
    double red, green, blue, denominator;
};
constexpr Matrix k601 = {.red = 299, .green = 587, .blue = 114, .denominator = 1000};
constexpr Matrix k709 = {.red = 2126, .green = 7152, .blue = 722, .denominator = 10000};

constexpr CodeRule Rule(const Components& weights, double divisor, double offset, double lowest, double highest)
{
    return {.weights = weights, .divisor = divisor, .offset = offset, .lowest = lowest, .highest = highest};
}

/// The rules for one matrix and depth.
struct YCbCrRules {
    CodeRule luma, blueChroma, redChroma;
};

/// `scale` is 2^(n-8) for codes of n bits.
constexpr YCbCrRules RulesFor(const Matrix& m, double scale)
{
    // The first and last codes that are not timing codes: 1..254, 4..1019.
    const double lowest = scale;
    const double highest = 255 * scale - 1;
    const double y = 219 * scale;
    // 224·C with C = (B'-Y')/(2(1-KB)): the 2 goes out of both.
    const double c = 112 * scale;
    const double notBlue = m.denominator - m.blue;
    const double notRed = m.denominator - m.red;
    return {
        .luma = Rule({y * m.blue, y * m.green, y * m.red}, m.denominator, 16 * scale, lowest, highest),
        .blueChroma = Rule({c * notBlue, -c * m.green, -c * m.red}, notBlue, 128 * scale, lowest, highest),
        .redChroma = Rule({-c * m.blue, -c * m.green, c * notRed}, notRed, 128 * scale, lowest, highest),
    };
}

constexpr YCbCrRules k601In8Bits = RulesFor(k601, 1);
constexpr YCbCrRules k709In8Bits = RulesFor(k709, 1);
constexpr YCbCrRules k601In10Bits = RulesFor(k601, 4);
constexpr YCbCrRules k709In10Bits = RulesFor(k709, 4);

constexpr CodeRule ComponentRule(std::size_t index)
{
    Components weights{};
    weights[index] = 255;
    return Rule(weights, 1, 0, 0, 255);
}
constexpr std::array<CodeRule, 3> k8BitComponents = {ComponentRule(0), ComponentRule(1), ComponentRule(2)};

constexpr double kLargest = std::numeric_limits<float>::max();

bool IsPlainFloat(std::uint32_t code) noexcept
{
    return (code & (kBitFloat | kBitYCbCr | kBitPremultiplied | kBitLinear)) == kBitFloat;
}

/// Keeps a number in the range of float; an infinity becomes the largest float.
double Finite(double value) noexcept
{
    return value > kLargest ? kLargest : (value < -kLargest ? -kLargest : value);
}

double Sanitized(float value) noexcept
{
    return std::isnan(value) ? 0 : Finite(value);
}

float Stored(double value) noexcept
{
    return static_cast<float>(Finite(value));
}

/// The inverse of the BT.709 OETF, odd about zero.
double Linearized(double value) noexcept
{
    constexpr double kAlpha = 1.09929682680944;
    constexpr double kBeta = 0.018053968510807;
    const double magnitude = std::abs(value);
    if (magnitude < 4.5 * kBeta) {
        return value / 4.5;
    }
    return std::copysign(std::pow((magnitude + (kAlpha - 1)) / kAlpha, 1 / 0.45), value);
}

template <class Sample>
StoredColor Repeated(const std::array<Sample, 4>& samples) noexcept
{
    constexpr std::size_t kBytes = sizeof(samples);
    StoredColor stored;
    for (std::size_t at = 0; at < StoredColor::kPatternBytes; at += kBytes) {
        std::memcpy(stored.pattern.data() + at, samples.data(), kBytes);
    }
    return stored;
}

/// Puts samples given in the order of BGRA or VUYA into the order of the format.
template <class Sample>
StoredColor Interleaved(std::uint32_t code, Sample first, Sample second, Sample third, Sample alpha) noexcept
{
    if ((code & kBitSwapped) != 0) {
        return Repeated<Sample>({alpha, third, second, first});
    }
    return Repeated<Sample>({first, second, third, alpha});
}

struct YCbCrCodes {
    std::uint32_t luma, blueChroma, redChroma;
};

YCbCrCodes CodesOf(const YCbCrRules& rules, const Components& bgr) noexcept
{
    const double tolerance = CodeTolerance(bgr);
    return {.luma = Code(rules.luma, bgr, tolerance),
            .blueChroma = Code(rules.blueChroma, bgr, tolerance),
            .redChroma = Code(rules.redChroma, bgr, tolerance)};
}

StoredColor InV210(const YCbCrCodes& c) noexcept
{
    const auto word = [](std::uint32_t low, std::uint32_t middle, std::uint32_t high) {
        return low | middle << 10 | high << 20;
    };
    return Repeated<std::uint32_t>({word(c.blueChroma, c.luma, c.redChroma), word(c.luma, c.blueChroma, c.luma),
                                    word(c.redChroma, c.luma, c.blueChroma),
                                    word(c.luma, c.redChroma, c.luma)});
}

StoredColor In422(std::uint32_t code, const YCbCrCodes& c) noexcept
{
    const auto y = static_cast<std::uint8_t>(c.luma);
    const auto cb = static_cast<std::uint8_t>(c.blueChroma);
    const auto cr = static_cast<std::uint8_t>(c.redChroma);
    if ((code & kBitSwapped) != 0) {
        return Repeated<std::uint8_t>({y, cb, y, cr});
    }
    return Repeated<std::uint8_t>({cb, y, cr, y});
}

StoredColor In8Bits(std::uint32_t code, const Components& bgr, double alpha) noexcept
{
    const Components onlyAlpha = {alpha, 0, 0};
    const auto a = static_cast<std::uint8_t>(Code(k8BitComponents[0], onlyAlpha, CodeTolerance(onlyAlpha)));
    if ((code & kBitYCbCr) != 0) {
        const YCbCrCodes c = CodesOf((code & kBit709) != 0 ? k709In8Bits : k601In8Bits, bgr);
        return Interleaved<std::uint8_t>(code, static_cast<std::uint8_t>(c.redChroma),
                                         static_cast<std::uint8_t>(c.blueChroma),
                                         static_cast<std::uint8_t>(c.luma), a);
    }
    const double tolerance = CodeTolerance(bgr);
    const auto component = [&](std::size_t index) {
        return static_cast<std::uint8_t>(Code(k8BitComponents[index], bgr, tolerance));
    };
    return Interleaved<std::uint8_t>(code, component(0), component(1), component(2), a);
}

/// `scale` multiplies Y', Cb and Cr. The components come without it: only then are the sums exact.
StoredColor InFloatYCbCr(std::uint32_t code, const Components& bgr, double scale, double alpha) noexcept
{
    const Matrix& m = (code & kBit709) != 0 ? k709 : k601;
    const double notBlue = m.denominator - m.blue;
    const double notRed = m.denominator - m.red;
    const double y = m.red * bgr[2] + m.green * bgr[1] + m.blue * bgr[0];
    // Chroma from its own weights, not from B'-Y': greys get exactly 0.
    const double cb = notBlue * bgr[0] - m.green * bgr[1] - m.red * bgr[2];
    const double cr = notRed * bgr[2] - m.green * bgr[1] - m.blue * bgr[0];
    return Repeated<float>({Stored(cr / (2 * notRed) * scale), Stored(cb / (2 * notBlue) * scale),
                            Stored(y / m.denominator * scale), Stored(alpha)});
}

} // namespace

StoredColor ConvertColor(std::uint32_t code, const ColorBGRA& color) noexcept
{
    const bool hasAlpha = (code & kBitNoAlpha) == 0;
    if (IsPlainFloat(code)) {
        return Interleaved<float>(code, color[0], color[1], color[2], hasAlpha ? color[3] : 1.0F);
    }
    Components bgr = {Sanitized(color[0]), Sanitized(color[1]), Sanitized(color[2])};
    const double alpha = hasAlpha ? Sanitized(color[3]) : 1.0;
    const double scale = (code & kBitPremultiplied) != 0 ? alpha : 1.0;
    if ((code & kBitFloat) != 0) {
        if ((code & kBitYCbCr) != 0) {
            return InFloatYCbCr(code, bgr, scale, alpha);
        }
        if ((code & kBitLinear) != 0) {
            bgr = {Linearized(bgr[0]), Linearized(bgr[1]), Linearized(bgr[2])};
        }
        return Interleaved<float>(code, Stored(bgr[0] * scale), Stored(bgr[1] * scale), Stored(bgr[2] * scale),
                                  Stored(alpha));
    }
    bgr = {bgr[0] * scale, bgr[1] * scale, bgr[2] * scale};
    const bool is709 = (code & kBit709) != 0;
    if ((code & kBitV210) != 0) {
        return InV210(CodesOf(is709 ? k709In10Bits : k601In10Bits, bgr));
    }
    if ((code & kBit422) != 0) {
        return In422(code, CodesOf(is709 ? k709In8Bits : k601In8Bits, bgr));
    }
    return In8Bits(code, bgr, alpha);
}

} // namespace pixmill
