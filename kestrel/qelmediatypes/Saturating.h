/// Conversions and arithmetic that stop at the ends of their range, neither wrapping nor trapping.
/// [thread-safe]
#pragma once

#include <kestrel/Export.h>

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

/// `value` rounded to the nearest 32-bit float; an infinity of its sign beyond the largest, NaN stays NaN.
[[nodiscard]] KESTREL_API float SaturatingToFloat(double value) noexcept;

[[nodiscard]] KESTREL_API std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept;
[[nodiscard]] KESTREL_API std::int64_t SaturatingSubtract(std::int64_t a, std::int64_t b) noexcept;
[[nodiscard]] KESTREL_API std::int64_t SaturatingMultiply(std::int64_t a, std::int64_t b) noexcept;
/// a × b + c, saturated once, at the end.
[[nodiscard]] KESTREL_API std::int64_t SaturatingMultiplyAdd(std::int64_t a, std::int64_t b,
                                                             std::int64_t c) noexcept;

} // namespace qelmediatypes
