#include "ColorConversion.h"

#include "IntegerConversion.h"

#include <bit>
#include <cmath>
#include <limits>

namespace pixmill {
namespace {

constexpr double kLargestFloat = std::numeric_limits<float>::max();

bool IsPlainFloat(std::uint32_t code) noexcept
{
    return (code & (kBitFloat | kBitYCbCr | kBitPremultiplied | kBitLinear)) == kBitFloat;
}

/// Keeps a number in the range of float; an infinity becomes the largest float.
double Finite(double value) noexcept
{
    return value > kLargestFloat ? kLargestFloat : (value < -kLargestFloat ? -kLargestFloat : value);
}

double Sanitized(double value) noexcept
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

FillWords InFloatYCbCr(std::uint32_t code, const Components& bgra) noexcept
{
    // Alpha comes after the sums, which are exact only without it.
    const double scale = (code & kBitPremultiplied) != 0 ? bgra[3] : 1.0;
    const Matrix& m = (code & kBit709) != 0 ? kMatrix709 : kMatrix601;
    const double notBlue = m.denominator - m.blue;
    const double notRed = m.denominator - m.red;
    const double y = m.red * bgra[2] + m.green * bgra[1] + m.blue * bgra[0];
    // Chroma from its own weights, not from B'-Y': greys get exactly 0.
    const double cb = notBlue * bgra[0] - m.green * bgra[1] - m.red * bgra[2];
    const double cr = notRed * bgra[2] - m.green * bgra[1] - m.blue * bgra[0];
    return Repeated(Stored(cr / (2 * notRed) * scale), Stored(cb / (2 * notBlue) * scale),
                    Stored(y / m.denominator * scale), Stored(bgra[3]));
}

FillWords InFloats(std::uint32_t code, const Components& bgra) noexcept
{
    if ((code & kBitYCbCr) != 0) {
        return InFloatYCbCr(code, bgra);
    }
    Components light = bgra;
    if ((code & kBitLinear) != 0) {
        light = {Linearized(bgra[0]), Linearized(bgra[1]), Linearized(bgra[2]), bgra[3]};
    }
    light = Scaled(code, light);
    return Interleaved(code, Stored(light[0]), Stored(light[1]), Stored(light[2]), Stored(light[3]));
}

FillWords InExactCodes(std::uint32_t code, const Components& bgra) noexcept
{
    const CodeRules& rules = RulesFor(code);
    const Components scaled = Scaled(code, bgra);
    Codes codes{};
    if (!(Magnitude(scaled) < kQuickMagnitude) || !QuickCodes(rules, scaled, codes)) {
        for (std::size_t i = 0; i < codes.size(); ++i) {
            codes[i] = ExactCode(rules, i, scaled);
        }
    }
    return InCodes(code, codes);
}

StoredColor AsStored(FillWords pattern) noexcept
{
    return {.pattern = std::bit_cast<FillPattern>(pattern)};
}

} // namespace

StoredColor ConvertColor(std::uint32_t code, const ColorBGRA& color) noexcept
{
    const float alpha = (code & kBitNoAlpha) == 0 ? color[3] : 1.0F;
    if (IsPlainFloat(code)) {
        return AsStored(Interleaved(code, color[0], color[1], color[2], alpha));
    }
    const Components bgra = {Sanitized(color[0]), Sanitized(color[1]), Sanitized(color[2]), Sanitized(alpha)};
    return AsStored((code & kBitFloat) != 0 ? InFloats(code, bgra) : InExactCodes(code, bgra));
}

} // namespace pixmill
