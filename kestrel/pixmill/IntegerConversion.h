/// Colours in the formats of integer codes: the rules of every format, and the conversion that a fill of a
/// single row can afford. What it leaves to `ConvertColor` is rare.
#pragma once

#include "CodeValues.h"
#include "ColorConversion.h"
#include "FillRow.h"

#include <bit>
#include <cmath>

namespace pixmill {

/// KR, 1-KR-KB and KB as integers over one denominator: exact, unlike any binary fraction.
struct Matrix {
    double red, green, blue, denominator;
};
inline constexpr Matrix kMatrix601 = {.red = 299, .green = 587, .blue = 114, .denominator = 1000};
inline constexpr Matrix kMatrix709 = {.red = 2126, .green = 7152, .blue = 722, .denominator = 10000};

/// One of the four codes that rules make.
struct CodeRule {
    std::array<double, 4> weights; // of blue, green, red, alpha
    double divisor, offset, lowest, highest;
};

constexpr CodeRules RulesOf(const std::array<CodeRule, CodeRules::kCount>& each)
{
    CodeRules rules{};
    for (std::size_t i = 0; i < each.size(); ++i) {
        for (std::size_t component = 0; component < 4; ++component) {
            rules.weights[component][i] = each[i].weights[component];
            rules.factors[component][i] = each[i].weights[component] / each[i].divisor;
        }
        rules.divisor[i] = each[i].divisor;
        rules.offset[i] = each[i].offset;
        rules.lowest[i] = each[i].lowest;
        rules.highest[i] = each[i].highest;
        rules.shift[i] = each[i].offset + 0.5;
        rules.least[i] = each[i].lowest + 0.25;
        rules.most[i] = each[i].highest + 0.75;
    }
    return rules;
}

constexpr CodeRule EightBits(const std::array<double, 4>& weights)
{
    return {.weights = weights, .divisor = 1, .offset = 0, .lowest = 0, .highest = 255};
}
inline constexpr CodeRule kAlphaRule = EightBits({0, 0, 0, 255});

/// Cr, Cb, Y and alpha, in codes of n bits with `scale` = 2^(n-8); alpha is always 8-bit.
constexpr CodeRules VuyaRules(const Matrix& m, double scale)
{
    // The first and last codes that are not timing codes: 1..254, 4..1019.
    const double lowest = scale;
    const double highest = 255 * scale - 1;
    const double y = 219 * scale;
    // 224·C with C = (B'-Y')/(2(1-KB)): the 2 goes out of both.
    const double c = 112 * scale;
    const double notBlue = m.denominator - m.blue;
    const double notRed = m.denominator - m.red;
    return RulesOf(
        {CodeRule{{-c * m.blue, -c * m.green, c * notRed, 0}, notRed, 128 * scale, lowest, highest},
         CodeRule{{c * notBlue, -c * m.green, -c * m.red, 0}, notBlue, 128 * scale, lowest, highest},
         CodeRule{{y * m.blue, y * m.green, y * m.red, 0}, m.denominator, 16 * scale, lowest, highest},
         kAlphaRule});
}

inline constexpr CodeRules kBgraRules =
    RulesOf({EightBits({255, 0, 0, 0}), EightBits({0, 255, 0, 0}), EightBits({0, 0, 255, 0}), kAlphaRule});
inline constexpr CodeRules k601In8Bits = VuyaRules(kMatrix601, 1);
inline constexpr CodeRules k709In8Bits = VuyaRules(kMatrix709, 1);
inline constexpr CodeRules k601In10Bits = VuyaRules(kMatrix601, 4);
inline constexpr CodeRules k709In10Bits = VuyaRules(kMatrix709, 4);

inline const CodeRules& RulesFor(std::uint32_t code) noexcept
{
    if ((code & kBitYCbCr) == 0) {
        return kBgraRules;
    }
    if ((code & kBitV210) != 0) {
        return (code & kBit709) != 0 ? k709In10Bits : k601In10Bits;
    }
    return (code & kBit709) != 0 ? k709In8Bits : k601In8Bits;
}

[[nodiscard]] inline double Magnitude(const Components& components) noexcept
{
    return std::abs(components[0]) + std::abs(components[1]) + std::abs(components[2]) +
           std::abs(components[3]);
}

/// The components as they are stored: in premultiplied formats the colour multiplied by alpha.
[[nodiscard]] inline Components Scaled(std::uint32_t code, const Components& bgra) noexcept
{
    if ((code & kBitPremultiplied) == 0) {
        return bgra;
    }
    const double scale = bgra[3];
    return {bgra[0] * scale, bgra[1] * scale, bgra[2] * scale, bgra[3]};
}

constexpr std::uint64_t Joined(std::uint32_t low, std::uint32_t high) noexcept
{
    return std::uint64_t{high} << 32 | low;
}

/// Four bytes, over and over.
inline FillWords Repeated(std::uint32_t first, std::uint32_t second, std::uint32_t third,
                          std::uint32_t fourth) noexcept
{
    const std::uint32_t word = first | second << 8 | third << 16 | fourth << 24;
    return {.low = Joined(word, word), .high = Joined(word, word)};
}

inline FillWords Repeated(float first, float second, float third, float fourth) noexcept
{
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    return {.low = Joined(bits(first), bits(second)), .high = Joined(bits(third), bits(fourth))};
}

/// Puts samples given in the order of BGRA or VUYA into the order of the format.
template <class Sample>
inline FillWords Interleaved(std::uint32_t code, Sample first, Sample second, Sample third,
                             Sample alpha) noexcept
{
    if ((code & kBitSwapped) != 0) {
        return Repeated(alpha, third, second, first);
    }
    return Repeated(first, second, third, alpha);
}

/// @param vuy  Cr, Cb, Y.
inline FillWords InV210(const Codes& vuy) noexcept
{
    const auto word = [](std::uint32_t low, std::uint32_t middle, std::uint32_t high) {
        return low | middle << 10 | high << 20;
    };
    const auto [cr, cb, y, alpha] = vuy;
    return {.low = Joined(word(cb, y, cr), word(y, cb, y)), .high = Joined(word(cr, y, cb), word(y, cr, y))};
}

inline FillWords InCodes(std::uint32_t code, const Codes& codes) noexcept
{
    if ((code & kBitV210) != 0) {
        return InV210(codes);
    }
    if ((code & kBit422) != 0) {
        const auto [cr, cb, y, alpha] = codes;
        return (code & kBitSwapped) != 0 ? Repeated(y, cb, y, cr) : Repeated(cb, y, cr, y);
    }
    return Interleaved(code, codes[0], codes[1], codes[2], codes[3]);
}

/// Converts for a format of integer codes, within some ten nanoseconds and without a call.
///
/// @return false, and `pattern` means nothing, where components are huge or not finite or a code lies on a
///         rounding tie.
[[nodiscard]] inline bool ConvertQuickly(std::uint32_t code, const ColorBGRA& color,
                                         FillWords& pattern) noexcept
{
    const Components scaled =
        Scaled(code, {color[0], color[1], color[2], (code & kBitNoAlpha) == 0 ? color[3] : 1.0F});
    Codes codes;
    const bool isCertain = QuickCodes(RulesFor(code), scaled, codes);
    pattern = InCodes(code, codes);
    return isCertain && Magnitude(scaled) < kQuickMagnitude;
}

} // namespace pixmill
