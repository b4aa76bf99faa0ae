#include "SteadyTone.h"

#include <kestrel/qelaccelerate/Vector.h>

#include <span>

namespace ImporterTessel {

void SynthesizeSteadyTone(const AudioRequest& request, Tone tone, std::int32_t channelCount) noexcept
{
    std::span<float> first;
    for (std::int32_t channel = 0; channel < channelCount; ++channel) {
        const std::span<float> samples = request.Samples(channel);
        if (samples.empty()) {
            continue;
        }
        if (first.empty()) {
            first = samples;
            FillSineSpan(request.rate, request.start, tone, first);
        } else {
            qelaccelerate::utility::Copy(first.size(), first.data(), samples.data());
        }
    }
}

} // namespace ImporterTessel
