#include "WrongPlugin.h"

#include <array>
#include <set>

namespace wrong {

namespace {

/// Serves a request for sound with what `change` makes of its record.
template <class Change>
Serve SoundsAs(const Change& change)
{
    return [=](const Request& request) {
        if (!request.Is(ksSelectorAudio)) {
            return Right(request);
        }
        ksAudioRec changed = *request.Second<ksAudioRec>();
        change(changed);
        return Right({request.selector, request.stdParms, request.param1, &changed});
    };
}

/// Changes the samples of a served request; they are the clip's two channels.
template <class Change>
Serve Sounds(const Change& change)
{
    return [=](const Request& request) {
        const std::int32_t answer = Right(request);
        if (request.Is(ksSelectorAudio) && answer == ksResultServed &&
            request.Second<ksAudioRec>()->channels != nullptr) {
            change(*request.Second<ksAudioRec>());
        }
        return answer;
    };
}

std::int32_t SwapsLeftAndRight(const Request& request)
{
    std::array<float*, 6> swapped{};
    return SoundsAs([&swapped](ksAudioRec& audio) {
        for (std::size_t channel = 0; channel < swapped.size() && audio.channels != nullptr; ++channel) {
            swapped.at(channel) = audio.channels[channel < 2 ? 1 - channel : channel];
        }
        audio.channels = audio.channels != nullptr ? swapped.data() : nullptr;
    })(request);
}

void OneSampleLess(ksAudioRec& audio)
{
    audio.sampleCount = audio.sampleCount == 0 ? 0 : audio.sampleCount - 1;
}

void FromZero(ksAudioRec& audio)
{
    audio.position = 0;
}

void ASampleAlways(const ksAudioRec& audio)
{
    if (audio.sampleCount == 0) {
        audio.channels[0][0] = 0.0F;
    }
}

void OneDecibelQuieter(const ksAudioRec& audio)
{
    for (std::uint32_t at = 0; at < audio.sampleCount; ++at) {
        float& sample = audio.channels[0][at];
        sample *= sample < 1.0F ? 0.891F : 1.0F; // what was not written has the checker's value, 7
    }
}

void OffsetByTheInstancesNumber(const ksAudioRec& audio)
{
    static std::set<void*> instances;
    instances.insert(audio.instance);
    if (audio.sampleCount > 0) {
        audio.channels[0][0] += static_cast<float>(instances.size() - 1);
    }
}

std::int32_t ServesNullBuffers(const Request& request)
{
    const bool hasNone = request.Is(ksSelectorAudio) && request.Second<ksAudioRec>()->instance != nullptr &&
                         request.Second<ksAudioRec>()->channels == nullptr;
    return hasNone ? std::int32_t{ksResultServed} : Right(request);
}

std::int32_t CrashesBeforeTheFirstSample(const Request& request)
{
    if (request.Is(ksSelectorAudio) && request.Second<ksAudioRec>()->position < 0) {
        Crash();
    }
    return Right(request);
}

} // namespace

std::vector<WrongPlugin> WrongSound()
{
    return {
        {"SwapsLeftAndRight", SwapsLeftAndRight},
        {"LeavesItsLastSample", SoundsAs(OneSampleLess)},
        {"StartsEachRequestAtZero", SoundsAs(FromZero)},
        {"WritesASampleAlways", Sounds(ASampleAlways)},
        {"SoundsOneDecibelQuieter", Sounds(OneDecibelQuieter)},
        {"SoundsLikeItsInstance", Sounds(OffsetByTheInstancesNumber)},
        {"ServesNullBuffers", ServesNullBuffers},
        {"CrashesBeforeTheFirstSample", CrashesBeforeTheFirstSample},
        {"SpoilsConcurrentSound", SpoilsConcurrent(ksSelectorAudio,
                                                   [](const Request& request) {
                                                       request.Second<ksAudioRec>()->channels[0][0] += 1.0F;
                                                       return std::int32_t{ksResultServed};
                                                   })},
    };
}

} // namespace wrong
