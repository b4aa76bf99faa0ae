#include "AudioSynthesis.h"

#include "AudioRequest.h"
#include "MultichannelIdentification.h"
#include "SineSpan.h"
#include "SteadyTone.h"
#include "StereoIdentification.h"

#include <kestrel/qelmediatypes/TickTime.h>

namespace ImporterTessel {
namespace {

void IdentifyChannels(const AudioRequest& request, std::int32_t identifierFormat) noexcept
{
    switch (identifierFormat) {
    case kIdentifierEBUStereo1000:
        SynthesizeStereoIdentification(request, 1000.0F);
        break;
    case kIdentifierEBUStereo400:
        SynthesizeStereoIdentification(request, 400.0F);
        break;
    case kIdentifierEBUMultichannel:
        SynthesizeEBUMultichannel(request);
        break;
    case kIdentifierBLITS:
        SynthesizeBLITS(request);
        break;
    default:
        // Intended: an unknown identification leaves the buffers as they are.
        break;
    }
}

} // namespace

bool WritesAnyChannel(const TesselInfo& info) noexcept
{
    if (info.mToneFormat == kToneIdentifyChannels) {
        return info.mIdentifierFormat >= kIdentifierEBUStereo1000 && info.mIdentifierFormat <= kIdentifierBLITS;
    }
    return info.mNumChannels > 0;
}

void SynthesizeAudio(const TesselInfo& info, std::int64_t position, std::uint32_t sampleCount,
                     float* const* channels) noexcept
{
    if (channels == nullptr || sampleCount == 0) {
        return;
    }
    const qelmediatypes::FrameRate rate = qelmediatypes::SampleDuration(info.mSampleRate);
    const AudioRequest request{rate, qelmediatypes::TickTime(position, rate), channels, sampleCount};
    // Every other tone format is the steady tone.
    if (info.mToneFormat == kToneIdentifyChannels) {
        IdentifyChannels(request, info.mIdentifierFormat);
    } else {
        SynthesizeSteadyTone(request, {info.mSteadyToneFrequency, info.mSteadyToneAmplitude},
                             info.mNumChannels);
    }
}

} // namespace ImporterTessel
