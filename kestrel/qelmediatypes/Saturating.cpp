#include "Saturating.h"

namespace qelmediatypes {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();

} // namespace

float SaturatingToFloat(double value) noexcept
{
    constexpr double kHighestFloat = std::numeric_limits<float>::max();
    // Half a unit in the last place above the largest float: from here rounding to nearest goes up.
    constexpr double kFirstInfinite = 0x1.ffffffp+127;
    if (value >= kFirstInfinite) {
        return std::numeric_limits<float>::infinity();
    }
    if (value <= -kFirstInfinite) {
        return -std::numeric_limits<float>::infinity();
    }
    if (value > kHighestFloat) {
        return std::numeric_limits<float>::max();
    }
    if (value < -kHighestFloat) {
        return std::numeric_limits<float>::lowest();
    }
    return static_cast<float>(value);
}

std::int64_t SaturatingAdd(std::int64_t a, std::int64_t b) noexcept
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) {
        return b < 0 ? kLowest : kHighest;
    }
    return sum;
}

std::int64_t SaturatingSubtract(std::int64_t a, std::int64_t b) noexcept
{
    std::int64_t difference = 0;
    if (__builtin_sub_overflow(a, b, &difference)) {
        return b < 0 ? kHighest : kLowest;
    }
    return difference;
}

std::int64_t SaturatingMultiply(std::int64_t a, std::int64_t b) noexcept
{
    std::int64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product)) {
        return (a < 0) == (b < 0) ? kHighest : kLowest;
    }
    return product;
}

std::int64_t SaturatingMultiplyAdd(std::int64_t a, std::int64_t b, std::int64_t c) noexcept
{
    // Both steps in 128 bits: saturating the product first would lose what `c` takes back.
    __extension__ using Wide = __int128;
    const Wide exact = static_cast<Wide>(a) * b + c;
    if (exact > kHighest) {
        return kHighest;
    }
    if (exact < kLowest) {
        return kLowest;
    }
    return static_cast<std::int64_t>(exact);
}

} // namespace qelmediatypes
