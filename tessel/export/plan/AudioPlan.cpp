#include "AudioPlan.h"

#include "VideoPlan.h"

#include <tessel/document/SettingHint.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <cmath>
#include <numeric>

namespace tessel::exporting {
namespace {

using document::ClipFacts;
using importhost::kMostChannels;

constexpr std::int32_t kChannelType51 = 3;

std::int32_t WholeSampleRate(const ClipFacts& clip)
{
    // Files count samples per second in whole numbers.
    constexpr float kHighest = 16'777'216.0F; // the last float below which every integer is one
    const float rate = clip.sampleRate;
    if (!(rate >= 1.0F) || rate > kHighest || rate != std::floor(rate)) {
        throw ExportError(
            fmt::format("files do not take {} samples a second{}; use --video-only for the picture alone", rate,
                        SettingHint(clip, document::Setting::SampleRate)));
    }
    return static_cast<std::int32_t>(rate);
}

/// The codec for any number of channels at any rate, in the containers that have one.
constexpr const char* kRoomiest = "pcm24";

/// The chosen codec, or the container's; where that one is too small for the clip and nobody asked for it, PCM.
const AudioCodec& CodecFor(const ClipFacts& clip, const Container& container, const AudioCodec* chosen,
                           std::int32_t sampleRate)
{
    const AudioCodec& codec = chosen != nullptr ? *chosen : *AudioCodecNamed(container.audioCodec);
    if (clip.channelCount <= codec.mostChannels && sampleRate <= codec.highestRate) {
        return codec;
    }
    const AudioCodec& roomiest = *AudioCodecNamed(kRoomiest);
    if (chosen == nullptr && roomiest.GoesInto(container)) {
        return roomiest;
    }
    throw ExportError(
        fmt::format("{} does not take {} channels at {} Hz; {}", codec.name, clip.channelCount, sampleRate,
                    roomiest.GoesInto(container) ? fmt::format("use --audio-codec {}", roomiest.name)
                                                 : std::string("write mov, mkv or wav files")));
}

} // namespace

AudioPlan PlanAudio(const ClipFacts& clip, const Container& container, const AudioCodec* chosen, Dither dither)
{
    RequireRate(clip); // frames say where the sound begins and ends
    AudioPlan plan;
    plan.dither = dither;
    plan.headersOutOfBand = container.headersOutOfBand;
    plan.sampleRate = WholeSampleRate(clip);
    if (clip.channelCount > kMostChannels) {
        throw ExportError(
            fmt::format("the clip has {} audio channels, but {} are the most that are played; use "
                        "--video-only for the picture alone",
                        clip.channelCount, kMostChannels));
    }
    plan.codec = &CodecFor(clip, container, chosen, plan.sampleRate);
    plan.hostChannels.resize(static_cast<std::size_t>(clip.channelCount));
    std::iota(plan.hostChannels.begin(), plan.hostChannels.end(), 0);
    if (clip.channelCount == 6 && clip.channelType == kChannelType51) {
        // The host's 5.1 order is L R Ls Rs C LFE, that of files is L R C LFE Ls Rs.
        plan.hostChannels = {0, 1, 4, 5, 2, 3};
        plan.layout = SpeakerLayout::Surround51;
    } else if (clip.channelCount <= 2) {
        plan.layout = clip.channelCount == 1 ? SpeakerLayout::Mono : SpeakerLayout::Stereo;
    }
    return plan;
}

} // namespace tessel::exporting
