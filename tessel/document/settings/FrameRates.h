/// The frame rates that have a name of their own.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tessel::document {

struct NamedFrameRate {
    std::string_view name; ///< as people say it: "29.97"
    std::int32_t numerator;
    std::int32_t denominator;
};

/// In ascending order. Static storage. Threads: [thread-safe].
[[nodiscard]] std::span<const NamedFrameRate> NamedFrameRates() noexcept;

/// Ticks per frame of a rate, rounded to the nearest tick; both numbers 1 or more.
[[nodiscard]] std::int64_t TicksPerFrame(std::int64_t numerator, std::int64_t denominator) noexcept;

/// Whether the rate is a whole number of ticks, so that a document holds it exactly.
[[nodiscard]] bool IsExactRate(std::int64_t numerator, std::int64_t denominator) noexcept;

} // namespace tessel::document
