/// Integer code values from weighted sums of components, rounded exactly.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pixmill {

/// Blue, green, red, alpha. Each is a float or the product of two floats, hence exact in a double.
using Components = std::array<double, 4>;

/// Rules for four codes at once:
/// code = floor(weights·components / divisor + offset + 0.5), kept in lowest..highest.
///
/// All are integers, weights below 2^23 in magnitude, so that their products with components can be had
/// without error; no weight passes 2^10 times its divisor.
struct CodeRules {
    static constexpr std::size_t kCount = 4;
    using PerCode = std::array<double, kCount>;

    std::array<PerCode, 4> weights; ///< by component, then by code: what the compilers make vectors of
    PerCode divisor;                ///< above 0
    PerCode offset;
    PerCode lowest, highest; ///< 0 <= lowest < highest <= 1023

    // Made of the above, for `QuickCodes`.
    std::array<PerCode, 4> factors; ///< weights over divisors
    PerCode shift;                  ///< offset + 0.5
    PerCode least; ///< lowest + 0.25 and highest + 0.75: clipped there, a value has the right integer part
    PerCode most;  ///< and is far from a tie
};

using Codes = std::array<std::uint32_t, CodeRules::kCount>;

/// One code in exact arithmetic throughout. Costs some hundred nanoseconds.
[[nodiscard]] std::uint32_t ExactCode(const CodeRules& rules, std::size_t index,
                                      const Components& components) noexcept;

/// Sums of components' magnitudes below this are small enough for `QuickCodes`.
inline constexpr double kQuickMagnitude = 1024;

/// The codes that the rules give, where plain arithmetic in double can be trusted with that.
///
/// @param components  Their magnitudes' sum is below `kQuickMagnitude`.
/// @return Whether it can: false where a value lies too near to a tie, and then `codes` means nothing.
[[nodiscard]] inline bool QuickCodes(const CodeRules& rules, const Components& components,
                                     Codes& codes) noexcept
{
    // Factors are below 2^10: ten roundings of 2^-53 of sums of up to 2^20 make less than 2^-29.
    constexpr double kDoubt = 0x1p-28;

    std::array<std::int32_t, CodeRules::kCount> rounded;
    std::int32_t doubtful = 0;
    for (std::size_t i = 0; i < CodeRules::kCount; ++i) {
        double shifted = (rules.factors[0][i] * components[0] + rules.shift[i]) +
                         (rules.factors[1][i] * components[1] + rules.factors[2][i] * components[2]) +
                         rules.factors[3][i] * components[3];
        shifted = shifted > rules.least[i] ? shifted : rules.least[i];
        shifted = shifted < rules.most[i] ? shifted : rules.most[i];
        rounded[i] = static_cast<std::int32_t>(shifted);
        doubtful |= static_cast<std::int32_t>(shifted - kDoubt) ^ static_cast<std::int32_t>(shifted + kDoubt);
    }
    codes = {static_cast<std::uint32_t>(rounded[0]), static_cast<std::uint32_t>(rounded[1]),
             static_cast<std::uint32_t>(rounded[2]), static_cast<std::uint32_t>(rounded[3])};
    return doubtful == 0;
}

} // namespace pixmill
