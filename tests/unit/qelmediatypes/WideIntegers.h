/// Exact arithmetic to check 64-bit arithmetic against, and the numbers worth checking.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

namespace test {

__extension__ using Wide = __int128;

/// `exact` kept within `Integer`.
template <class Integer>
Integer Clamped(Wide exact)
{
    const Wide low = std::numeric_limits<Integer>::min();
    const Wide high = std::numeric_limits<Integer>::max();
    return static_cast<Integer>(std::clamp(exact, low, high));
}

/// The ends of the range, powers of two, small numbers and their neighbours, then random ones of every size.
/// The same numbers for the same seed.
inline std::vector<std::int64_t> InterestingIntegers(std::uint64_t seed, int randomCount)
{
    constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<std::int64_t>::max();
    std::vector<std::int64_t> numbers{kLowest, kLowest + 1, kHighest, kHighest - 1, 0};
    for (int bit = 0; bit < 63; ++bit) {
        for (const std::int64_t near : {-1, 0, 1}) {
            numbers.push_back((std::int64_t{1} << bit) + near);
            numbers.push_back(-(std::int64_t{1} << bit) + near);
        }
    }
    // NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp): the seed is fixed so that a failure repeats.
    std::mt19937_64 random(seed);
    for (int i = 0; i < randomCount; ++i) {
        const auto bits = static_cast<std::int64_t>(random());
        numbers.push_back(bits >> (random() % 63));
    }
    return numbers;
}

} // namespace test
