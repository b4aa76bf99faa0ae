#include "Measurement.h"

#include <algorithm>
#include <chrono>
#include <limits>

namespace tessel::cli {
namespace {

using Clock = std::chrono::steady_clock;

/// Long enough for the clock and for the caches to be warm again, short enough for many bursts.
constexpr double kBurstSeconds = 0.01;

double SecondsOf(const std::function<void()>& way, std::int64_t runs)
{
    const auto begin = Clock::now();
    for (std::int64_t i = 0; i < runs; ++i) {
        way();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
    return std::max(seconds, std::numeric_limits<double>::min());
}

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

std::vector<double> MedianSecondsPerRun(std::span<const std::function<void()>> ways,
                                        const MeasurementLimits& limits)
{
    const std::int64_t mostRuns =
        limits.mostRuns > 0 ? limits.mostRuns : std::numeric_limits<std::int64_t>::max();
    std::vector<std::int64_t> burst;
    for (const auto& way : ways) {
        way();
        const double once = SecondsOf(way, 1);
        burst.push_back(std::clamp<std::int64_t>(static_cast<std::int64_t>(std::min(kBurstSeconds / once, 1e6)),
                                                 1, mostRuns));
    }
    std::vector<std::vector<double>> samples(ways.size());
    std::vector<std::int64_t> runs(ways.size(), 0);
    std::vector<double> spent(ways.size(), 0.0);
    const auto isDone = [&](std::size_t i) {
        // Not "spent >= limit": a limit that is not a number would never be reached.
        return !(spent[i] < limits.seconds) || runs[i] >= mostRuns;
    };
    for (bool goOn = true; goOn;) {
        goOn = false;
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const std::int64_t count = std::max<std::int64_t>(std::min(burst[i], mostRuns - runs[i]), 1);
            const double seconds = SecondsOf(ways[i], count);
            samples[i].push_back(seconds / static_cast<double>(count));
            runs[i] += count;
            spent[i] += seconds;
            goOn = goOn || !isDone(i);
        }
    }
    std::vector<double> medians;
    medians.reserve(samples.size());
    for (auto& sample : samples) {
        medians.push_back(Median(std::move(sample)));
    }
    return medians;
}

} // namespace tessel::cli
