/// "Kestrel Legacy Suite": between ticks per frame and the pair of time scale and sample size.
#pragma once

#include <kestrel/importabi/Suites.h>

#include <cstdint>

namespace importhost {

/// Time scale (units per second) and sample size (units per frame); both 0 where there is no rate.
struct TimeScalePair {
    std::int32_t timeScale = 0;
    std::int32_t sampleSize = 0;
    bool operator==(const TimeScalePair&) const = default;
};

/// 254016000000 × sampleSize / timeScale to the nearest tick (halves up); 0 where that is no rate: a time
/// scale or sample size of 0 or less, or a frame longer than 64 bits of ticks.
[[nodiscard]] std::int64_t TicksFromTimeScale(TimeScalePair pair) noexcept;

/// The rate of `ticksPerFrame` as a reduced fraction: exact where both numbers fit 32 bits, which holds for
/// all rates in use; else the nearest fraction that does, which is less than one part in 2^31 away and gives
/// the same ticks back for frames shorter than 2^31 ticks. {0, 0} for what is no rate: ticks of 0 or less,
/// the unusable rate, and more than 2^31 - 1 frames a second.
[[nodiscard]] TimeScalePair TimeScaleFromTicks(std::int64_t ticksPerFrame) noexcept;

/// The suite's tables, for the life of the process. What is no rate leaves the outputs of version 2
/// untouched with a negative status, so that a caller who began with zeros describes a clip without a
/// rate; nothing traps.
[[nodiscard]] const ksLegacySuite1& LegacySuite1() noexcept;
[[nodiscard]] const ksLegacySuite2& LegacySuite2() noexcept;

} // namespace importhost
