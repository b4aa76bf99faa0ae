#include "Transition.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace tessel::verify::judge {

SteadySound::SteadySound(const std::vector<double>& frequencies, const ToneRun& run, double constant)
    : mConstant(constant)
{
    for (const Tone& tone : run.tones) {
        const double cycles = frequencies[tone.index] + tone.slope / (2 * std::numbers::pi);
        // Whole cycles go before the angle is made, which keeps long movies exact.
        const double turns = cycles * run.middle;
        mOscillators.push_back(
            {cycles, tone.amplitude, tone.phase - 2 * std::numbers::pi * (turns - std::floor(turns))});
    }
}

void SteadySound::Render(double first, std::span<double> samples) const
{
    std::fill(samples.begin(), samples.end(), mConstant);
    for (const Oscillator& oscillator : mOscillators) {
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double turns = oscillator.cycles * (first + static_cast<double>(i));
            samples[i] += oscillator.amplitude *
                          std::cos(2 * std::numbers::pi * (turns - std::floor(turns)) + oscillator.phase);
        }
    }
}

Transition FindTransition(std::span<const float> samples, std::span<const double> before,
                          std::span<const double> behind, double noise, bool allowsGap)
{
    const std::size_t count = samples.size();
    // Sums of squares of what remains over the first n samples.
    std::vector<double> left(count + 1, 0.0);
    std::vector<double> silent(count + 1, 0.0);
    std::vector<double> right(count + 1, 0.0);
    const auto square = [](double value) { return value * value; };
    for (std::size_t n = 0; n < count; ++n) {
        const auto sample = static_cast<double>(samples[n]);
        left[n + 1] = left[n] + square(sample - before[n]);
        silent[n + 1] = silent[n] + square(sample);
        right[n + 1] = right[n] + square(sample - behind[n]);
    }
    // Without silence between, and the same for every first place with silence: prefix minima.
    Transition best;
    double bestCost = std::numeric_limits<double>::max();
    std::vector<double> direct(count + 1);
    for (std::size_t n = 0; n <= count; ++n) {
        direct[n] = left[n] + right[count] - right[n];
        if (direct[n] < bestCost) {
            bestCost = direct[n];
            best.end = best.begin = n;
        }
    }
    // Places that are nearly as likely: 3 sigma.
    const double margin = 9 * noise * noise + 1e-12;
    std::size_t first = best.end;
    std::size_t last = best.end;
    for (std::size_t n = 0; n <= count; ++n) {
        if (direct[n] <= bestCost + margin) {
            first = std::min(first, n);
            last = std::max(last, n);
        }
    }
    best.uncertainty = static_cast<double>(last - first) / 2;
    if (allowsGap) {
        std::size_t leave = 0;
        for (std::size_t n = 0; n <= count; ++n) {
            if (left[n] - silent[n] < left[leave] - silent[leave]) {
                leave = n;
            }
            const double cost = left[leave] - silent[leave] + silent[n] + right[count] - right[n];
            // Silence has to explain more than the freedom that it adds.
            if (cost < bestCost - 2 * margin) {
                bestCost = cost;
                best.end = leave;
                best.begin = n;
            }
        }
    }
    return best;
}

} // namespace tessel::verify::judge
