#include "FrameRates.h"

#include <kestrel/qelmediatypes/TickTime.h>

#include <array>

namespace tessel::document {
namespace {

constexpr std::array<NamedFrameRate, 18> kRates{{{"10", 10, 1},
                                                 {"12", 12, 1},
                                                 {"12.5", 25, 2},
                                                 {"15", 15, 1},
                                                 {"23.976", 24000, 1001},
                                                 {"24", 24, 1},
                                                 {"25", 25, 1},
                                                 {"29.97", 30000, 1001},
                                                 {"30", 30, 1},
                                                 {"47.952", 48000, 1001},
                                                 {"48", 48, 1},
                                                 {"50", 50, 1},
                                                 {"59.94", 60000, 1001},
                                                 {"60", 60, 1},
                                                 {"100", 100, 1},
                                                 {"119.88", 120000, 1001},
                                                 {"120", 120, 1},
                                                 {"1000", 1000, 1}}};

} // namespace

std::span<const NamedFrameRate> NamedFrameRates() noexcept
{
    return kRates;
}

std::int64_t TicksPerFrame(std::int64_t numerator, std::int64_t denominator) noexcept
{
    // Whole seconds apart, so that the products stay within 64 bits: a numerator is at most 2^31, and
    // 254016000000 = 1000000 × 254016.
    constexpr std::int64_t kInner = 1'000'000;
    constexpr std::int64_t kOuter = qelmediatypes::kTicksPerSecond / kInner;
    const std::int64_t seconds = denominator / numerator;
    const std::int64_t inner = denominator % numerator * kInner;
    const std::int64_t outer = inner % numerator * kOuter;
    const std::int64_t rest = outer % numerator;
    return seconds * qelmediatypes::kTicksPerSecond + inner / numerator * kOuter + outer / numerator +
           (rest >= numerator - rest ? 1 : 0);
}

bool IsExactRate(std::int64_t numerator, std::int64_t denominator) noexcept
{
    constexpr std::int64_t kInner = 1'000'000;
    constexpr std::int64_t kOuter = qelmediatypes::kTicksPerSecond / kInner;
    return denominator % numerator * kInner % numerator * kOuter % numerator == 0;
}

} // namespace tessel::document
