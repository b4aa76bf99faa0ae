#include "OutputPlan.h"

#include <tessel/document/SettingHint.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

namespace tessel::exporting {

bool WantsPicture(const OutputRequest& request)
{
    return request.container->TakesVideo() && request.streams != Streams::AudioOnly;
}

void CheckRequest(const OutputRequest& request)
{
    const Container& container = *request.container;
    if (request.streams == Streams::AudioOnly && !container.TakesAudio()) {
        throw ExportError(
            fmt::format("{} files have no sound; use wav, mkv or mov with --audio-only", container.name));
    }
    if (request.streams == Streams::VideoOnly && !container.TakesVideo()) {
        throw ExportError(
            fmt::format("{} files have no picture; use mkv or mov with --video-only", container.name));
    }
    if (request.audioCodec != nullptr && !container.TakesAudio()) {
        throw ExportError(fmt::format("{} has no sound: remove --audio-codec", container.name));
    }
    if (request.videoCodec != nullptr && !container.TakesVideo()) {
        throw ExportError(fmt::format("{} has no picture: remove --video-codec", container.name));
    }
    if (request.videoCodec != nullptr && !request.videoCodec->GoesInto(container)) {
        throw ExportError(fmt::format("{} files do not carry {} video; they carry {}", container.name,
                                      request.videoCodec->name, VideoCodecNames(container)));
    }
    if (request.audioCodec != nullptr && !request.audioCodec->GoesInto(container)) {
        throw ExportError(fmt::format("{} files do not carry {} audio; they carry {}", container.name,
                                      request.audioCodec->name, AudioCodecNames(container)));
    }
    if (request.quality && !WantsPicture(request)) {
        throw ExportError("there is no picture: remove --quality");
    }
    if (!request.timecode.empty() && !WantsPicture(request)) {
        throw ExportError("there is no picture: remove --timecode");
    }
    if (!request.timecode.empty() && !Holds(container.keeps, Keeps::Timecode)) {
        throw ExportError(fmt::format("{} files hold no timecode: remove --timecode, or write mov, mxf or mkv",
                                      container.name));
    }
    if (request.quality && request.videoCodec != nullptr) {
        CheckQuality(*request.videoCodec, *request.quality);
    }
}

OutputPlan PlanOutput(const document::ClipFacts& clip, const OutputRequest& request)
{
    CheckRequest(request);
    const Container& container = *request.container;
    OutputPlan plan;
    plan.container = &container;
    if (WantsPicture(request)) {
        plan.video = PlanVideo(clip, container, request.videoCodec, request.quality);
    }
    if (!request.timecode.empty()) {
        plan.timecode = Timecode::Parse(request.timecode, plan.video->geometry.rateNumerator,
                                        plan.video->geometry.rateDenominator);
    }
    if (container.TakesAudio() && request.streams != Streams::VideoOnly && clip.channelCount > 0) {
        plan.audio = PlanAudio(clip, container, request.audioCodec, request.dither);
    }
    // Not for sequences: of picture files everybody knows that they have no sound.
    if (request.streams == Streams::All && container.kind == ContainerKind::PictureOnly) {
        plan.channelsLeftOut = clip.channelCount;
    }
    if (!plan.video && !plan.audio) {
        throw ExportError(
            fmt::format("the clip has no sound{}", SettingHint(clip, document::Setting::ChannelCount)));
    }
    return plan;
}

} // namespace tessel::exporting
