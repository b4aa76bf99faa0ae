#include "OutputPlan.h"

#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tessel::exporting {
namespace {

using importhost::ClipDescription;

constexpr std::int32_t kChannelType51 = 3;
constexpr std::int32_t kMostChannels = 64;

std::int32_t WholeSampleRate(float rate)
{
    // Files count samples per second in whole numbers.
    constexpr float kHighest = 16'777'216.0F; // the last float below which every integer is one
    if (!(rate >= 1.0F) || rate > kHighest || rate != std::floor(rate)) {
        throw ExportError(
            fmt::format("mSampleRate is {}, but files take whole numbers of samples per second from 1 "
                        "on; use --video-only for the picture alone",
                        rate));
    }
    return static_cast<std::int32_t>(rate);
}

/// The most channels that a codec takes.
std::int32_t MostChannels(AudioCodec codec) noexcept
{
    constexpr std::int32_t kWithoutLayouts = 8;
    switch (codec) {
    case AudioCodec::Flac:
    case AudioCodec::Aac:
    case AudioCodec::Opus:
        return kWithoutLayouts;
    default:
        return kMostChannels;
    }
}

template <class Codec>
bool Carries(std::span<const Codec> codecs, Codec codec) noexcept
{
    return std::find(codecs.begin(), codecs.end(), codec) != codecs.end();
}

AudioPlan PlanAudio(const ClipDescription& clip, const OutputRequest& request)
{
    const ContainerInfo& info = InfoOf(request.container);
    AudioPlan plan;
    plan.dither = request.dither;
    plan.sampleRate = WholeSampleRate(clip.sampleRate);
    if (clip.channelCount > kMostChannels) {
        throw ExportError(
            fmt::format("the clip has {} audio channels, but {} are the most that are played; use "
                        "--video-only for the picture alone",
                        clip.channelCount, kMostChannels));
    }
    plan.codec = request.audioCodec.value_or(info.audioCodecs.front());
    constexpr std::int32_t kHighestFlacRate = 655'350;
    const bool fits = clip.channelCount <= MostChannels(plan.codec) &&
                      (plan.codec != AudioCodec::Flac || plan.sampleRate <= kHighestFlacRate);
    if (!fits) {
        if (plan.codec != AudioCodec::Flac || request.audioCodec) {
            throw ExportError(fmt::format("{} does not take {} channels at {} Hz; use --audio-codec pcm24",
                                          NameOf(plan.codec), clip.channelCount, plan.sampleRate));
        }
        plan.codec = AudioCodec::Pcm24;
    }
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

} // namespace

void CheckRequest(const OutputRequest& request)
{
    const ContainerInfo& info = InfoOf(request.container);
    if (request.streams == Streams::AudioOnly && !info.TakesAudio()) {
        throw ExportError(
            fmt::format("{} files have no sound; use wav, mkv or mov with --audio-only", info.name));
    }
    if (request.streams == Streams::VideoOnly && !info.TakesVideo()) {
        throw ExportError(fmt::format("{} files have no picture; use mkv or mov with --video-only", info.name));
    }
    if (request.audioCodec && !info.TakesAudio()) {
        throw ExportError(fmt::format("{} files have no sound, so --audio-codec says nothing", info.name));
    }
    if (request.videoCodec && !info.TakesVideo()) {
        throw ExportError(fmt::format("{} files have no picture, so --video-codec says nothing", info.name));
    }
    if (request.videoCodec && !Carries(info.videoCodecs, *request.videoCodec)) {
        throw ExportError(fmt::format("{} files do not carry {} video; they carry {}", info.name,
                                      NameOf(*request.videoCodec), NamesOf(info.videoCodecs)));
    }
    if (request.audioCodec && !Carries(info.audioCodecs, *request.audioCodec)) {
        throw ExportError(fmt::format("{} files do not carry {} audio; they carry {}", info.name,
                                      NameOf(*request.audioCodec), NamesOf(info.audioCodecs)));
    }
}

OutputPlan PlanOutput(const ClipDescription& clip, const OutputRequest& request)
{
    CheckRequest(request);
    const ContainerInfo& info = InfoOf(request.container);
    OutputPlan plan;
    plan.container = request.container;
    if (info.TakesVideo() && request.streams != Streams::AudioOnly) {
        plan.video = PlanVideo(clip, request.container, request.videoCodec);
    }
    if (info.TakesAudio() && request.streams != Streams::VideoOnly && clip.channelCount > 0) {
        plan.audio = PlanAudio(clip, request);
    }
    if (!plan.video && !plan.audio) {
        throw ExportError("the clip has no sound: mNumChannels is not positive");
    }
    return plan;
}

} // namespace tessel::exporting
