/// The sine generator's rule with one C library sine a sample: what its vectors are compared with.
#pragma once

#include <ImporterTessel/audio/SineSpan.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <cmath>
#include <span>

namespace test {

inline void FillReferenceSine(qelmediatypes::FrameRate rate, qelmediatypes::TickTime start,
                              ImporterTessel::Tone tone, std::span<float> samples)
{
    constexpr double kTwoPi = 6.2831854820251465; // rounded to float
    const double cyclesPerSample = static_cast<double>(tone.frequency) / ImporterTessel::SamplesPerSecond(rate);
    const double cycles = static_cast<double>(start.ToFrame64(rate)) * cyclesPerSample;
    double phase = (cycles - std::trunc(cycles)) * kTwoPi;
    for (float& sample : samples) {
        sample = static_cast<float>(std::sin(phase) * static_cast<double>(tone.amplitude));
        phase += cyclesPerSample * kTwoPi;
    }
}

} // namespace test
