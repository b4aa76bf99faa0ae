/// Conversions and arithmetic that stop at the ends of their range instead of wrapping or trapping.
#pragma once

#include <cstdint>
#include <limits>
#include <type_traits>

namespace qelmediatypes {

/// `value` truncated toward zero and kept inside `Integer`; NaN gives 0.
template <class Integer>
requires std::is_integral_v<Integer>
[[nodiscard]] constexpr Integer SaturatingCast(double value) noexcept
{
    constexpr Integer kLowest = std::numeric_limits<Integer>::min();
    constexpr Integer kHighest = std::numeric_limits<Integer>::max();
    if (value != value) {
        return 0;
    }
    // The highest value of a 64-bit type rounds up to a power of two as a double, hence >=.
    if (value >= static_cast<double>(kHighest)) {
        return kHighest;
    }
    if (value <= static_cast<double>(kLowest)) {
        return kLowest;
    }
    return static_cast<Integer>(value);
}

[[nodiscard]] std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept;
[[nodiscard]] std::int64_t SaturatingSubtract(std::int64_t a, std::int64_t b) noexcept;
[[nodiscard]] std::int64_t SaturatingMultiply(std::int64_t a, std::int64_t b) noexcept;

} // namespace qelmediatypes
