#include "SineSpan.h"

#include "PhaseAccumulation.h"
#include "VectorSine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace ImporterTessel {
namespace {

struct PhaseRule {
    double first; ///< radians at the first sample
    double step;  ///< radians from one sample to the next
};

PhaseRule PhasesOf(qelmediatypes::FrameRate rate, qelmediatypes::TickTime start, float frequency) noexcept
{
    const double cyclesPerSample = static_cast<double>(frequency) / SamplesPerSecond(rate);
    const double cycles = static_cast<double>(start.ToFrame64(rate)) * cyclesPerSample;
    return {(cycles - std::trunc(cycles)) * kTwoPi, cyclesPerSample * kTwoPi};
}

void FillSinesOneByOne(std::span<const double> phases, double amplitude, float* out) noexcept
{
    std::transform(phases.begin(), phases.end(), out,
                   [amplitude](double phase) { return static_cast<float>(std::sin(phase) * amplitude); });
}

/// False for NaN too.
bool IsWithinVectorRange(double phase) noexcept
{
    return std::fabs(phase) <= kLargestVectorPhase;
}

/// Phases computed at a time: 4 KiB, which stay in the L1 cache.
constexpr std::size_t kBlockSize = 512;

} // namespace

double SamplesPerSecond(qelmediatypes::FrameRate rate) noexcept
{
    if (rate.ticksPerFrame == qelmediatypes::FrameRate::kUnusableTicks) {
        return 0.0;
    }
    return static_cast<double>(qelmediatypes::kTicksPerSecond) / static_cast<double>(rate.ticksPerFrame);
}

void FillSineSpan(qelmediatypes::FrameRate rate, qelmediatypes::TickTime start, Tone tone,
                  std::span<float> samples, SpanShape shape) noexcept
{
    if (shape == SpanShape::ConstantLevel) {
        std::fill(samples.begin(), samples.end(), tone.amplitude);
        return;
    }
    const VectorWidth width = qelaccelerate::WidestVectors();
    const PhaseRule rule = PhasesOf(rate, start, tone.frequency);
    const auto amplitude = static_cast<double>(tone.amplitude);
    std::array<double, kBlockSize> buffer;
    double phase = rule.first;
    while (!samples.empty()) {
        const std::span phases = std::span(buffer).first(std::min(buffer.size(), samples.size()));
        phase = AccumulatePhases(phase, rule.step, phases);
        // Phases only ever go one way, so the outermost are the first and the last.
        if (IsWithinVectorRange(phases.front()) && IsWithinVectorRange(phases.back())) {
            FillSines(phases, amplitude, samples.data(), width);
        } else {
            FillSinesOneByOne(phases, amplitude, samples.data());
        }
        samples = samples.subspan(phases.size());
    }
}

} // namespace ImporterTessel
