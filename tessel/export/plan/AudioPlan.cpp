#include "AudioPlan.h"

#include "VideoPlan.h"

#include <tessel/document/SettingHint.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <utility>

namespace tessel::exporting {
namespace {

using document::ClipFacts;
using importhost::kMostChannels;

/// The codec for any number of channels at any rate, in the containers that have one.
constexpr const char* kRoomiest = "pcm24";

/// The chosen codec, or the container's; PCM where the container's cannot hold the clip.
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
    SoundShape shape = SoundShapeOf(clip);
    if (shape.sampleRate == 0) {
        throw ExportError(
            fmt::format("files do not take {} samples a second{}; use --video-only for the picture alone",
                        clip.sampleRate, SettingHint(clip, document::Setting::SampleRate)));
    }
    plan.sampleRate = shape.sampleRate;
    if (clip.channelCount > kMostChannels) {
        throw ExportError(
            fmt::format("the clip has {} audio channels, but {} are the most that are played; use "
                        "--video-only for the picture alone",
                        clip.channelCount, kMostChannels));
    }
    if (container.onlySampleRate != 0 && plan.sampleRate != container.onlySampleRate) {
        throw ExportError(
            fmt::format("{} files carry sound of {} samples a second only, the clip has {}: write "
                        "mov or mkv, or use --video-only for the picture alone",
                        container.name, container.onlySampleRate, plan.sampleRate));
    }
    plan.codec = &CodecFor(clip, container, chosen, plan.sampleRate);
    plan.hostChannels = std::move(shape.hostChannels);
    plan.layout = shape.layout;
    return plan;
}

} // namespace tessel::exporting
