/// Integer code values from weighted sums of components, rounded exactly.
#pragma once

#include <array>
#include <cstdint>

namespace pixmill {

/// Three colour components. Each is a float or the product of two floats, hence exact in a double.
using Components = std::array<double, 3>;

/// code = floor(weights·components / divisor + offset + 0.5), kept in lowest..highest.
///
/// All numbers are integers, at most 2^23 in magnitude, so that sums of products can be had without error.
struct CodeRule {
    Components weights;
    double divisor; ///< above 0
    double offset;
    double lowest, highest; ///< 0 <= lowest < highest <= 1023
    double reciprocal = 1 / divisor;
};

/// How far `FastCode` trusts its own arithmetic, which rounds some ten times, for given components.
///
/// Weights over divisor stay below 2^10, so ten roundings of 2^-53 make less than 2^-39 of the components'
/// sum; codes of up to 2^10 add the rest.
[[nodiscard]] inline double CodeTolerance(const Components& components) noexcept;

/// The code that the rule gives in exact arithmetic.
///
/// @param components  Finite.
/// @param tolerance   `CodeTolerance(components)`.
[[nodiscard]] inline std::uint32_t Code(const CodeRule& rule, const Components& components,
                                        double tolerance) noexcept;

/// The same by exact arithmetic throughout: some hundred nanoseconds.
[[nodiscard]] std::uint32_t ExactCode(const CodeRule& rule, const Components& components) noexcept;

inline double CodeTolerance(const Components& components) noexcept
{
    const auto magnitude = [](double value) { return value < 0 ? -value : value; };
    return 0x1p-38 * (1 + magnitude(components[0]) + magnitude(components[1]) + magnitude(components[2]));
}

inline std::uint32_t Code(const CodeRule& rule, const Components& components, double tolerance) noexcept
{
    const double sum =
        rule.weights[0] * components[0] + rule.weights[1] * components[1] + rule.weights[2] * components[2];
    double shifted = sum * rule.reciprocal + (rule.offset + 0.5);
    // A quarter inside the end codes: what is clipped cannot be taken for a value near a tie.
    shifted = shifted > rule.lowest + 0.25 ? shifted : rule.lowest + 0.25;
    shifted = shifted < rule.highest + 0.75 ? shifted : rule.highest + 0.75;
    const auto code = static_cast<std::int32_t>(shifted);
    const double fraction = shifted - code;
    const double toTie = fraction < 0.5 ? fraction : 1 - fraction;
    if (toTie <= tolerance) [[unlikely]] {
        return ExactCode(rule, components);
    }
    return static_cast<std::uint32_t>(code);
}

} // namespace pixmill
