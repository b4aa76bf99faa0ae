/// Measuring several ways of doing something beside each other.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace tessel::cli {

struct MeasurementLimits {
    double seconds = 1.0;      ///< spent on each way of doing it; not a number counts as 0
    std::int64_t mostRuns = 0; ///< of each way; 0 for no limit
};

/// Runs each of `ways` in turn, a burst of runs at a time, until the limits are met, so that all of them see
/// the same machine: a disturbed burst disturbs one sample of each. Each way runs once beforehand, untimed.
///
/// @return for each way the median over its bursts of seconds per run. Never empty, never 0.
[[nodiscard]] std::vector<double> MedianSecondsPerRun(std::span<const std::function<void()>> ways,
                                                      const MeasurementLimits& limits);

} // namespace tessel::cli
