#include "OutputOptions.h"

#include "Commands.h"

#include <kestrel/qelcore/text/LetterCase.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/plan/Names.h>
#include <tessel/export/plan/Timecode.h>
#include <tessel/typed/NearMisses.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <span>
#include <string_view>

namespace tessel::cli {

using exporting::Container;
using exporting::ExportError;
using typed::DidYouMean;
using typed::NamesOfRows;

namespace {

/// "; did you mean 'hevc'?" for h265, which is more like h264: other programs' names count before likeness.
template <class Codec>
std::string DidYouMeanCodec(std::string_view name, std::span<const Codec> codecs)
{
    const auto isCalled = [name](const Codec& codec) {
        return exporting::IsSameName(codec.encoder, name) ||
               exporting::HasWord(codec.otherNames, qelcore::text::LowerCase(name));
    };
    const auto known = std::find_if(codecs.begin(), codecs.end(), isCalled);
    return known != codecs.end() ? fmt::format("; did you mean '{}'?", known->name)
                                 : DidYouMean(name, NamesOfRows(codecs));
}

/// What does not depend on the clip's rate. @throws ExportError
void RequireTimecodeForm(const std::string& timecode)
{
    try {
        if (!timecode.empty()) {
            exporting::Timecode::RequireForm(timecode);
        }
    } catch (const ExportError& error) {
        throw ExportError(fmt::format("--timecode: {}", error.what()));
    }
}

} // namespace

void AddThreadsOption(const Command& command, int& threads)
{
    constexpr int kMost = 1024; // far beyond any gain; each takes a stack and room for pictures
    command.AddNumber("--threads", threads, 1, kMost, "Threads to use; all cores where not said");
}

void AddOutputOptions(const Command& command, OutputOptions& options)
{
    command.StartGroup("Output");
    command.AddOption("--format", options.format, "What to write, where the extension does not say it")
        .ValueName("NAME")
        .WithChoices(NamesOfRows(exporting::AllContainers()));
    command
        .AddOption("--video-codec", options.videoCodec, "Instead of the one that keeps the clip's format best")
        .ValueName("NAME")
        .WithChoices(NamesOfRows(exporting::AllVideoCodecs()));
    command.AddOption("--audio-codec", options.audioCodec, "Instead of the container's usual one")
        .ValueName("NAME")
        .WithChoices(NamesOfRows(exporting::AllAudioCodecs()));
    command.AddNumber("--quality", options.quality, 0,
                      "On the codec's own scale, 0 or 1 being the best: CRF of h264, hevc (16), av1 and vp9 "
                      "(20), quantiser of mpeg2 and mjpeg (2)");
    command.AddFlag("--audio-only", options.audioOnly, "Sound alone");
    command.AddFlag("--video-only", options.videoOnly, "Picture alone");
    command.AddFlag("--dither", options.dither, "Triangular dither for integer samples");
    command.StartGroup("Frames");
    command.AddNumber("--from", options.from, 0, "First frame, counted from 0").ValueName("FRAME");
    command.AddNumber("--to", options.to, 0, "Last frame, included").ValueName("FRAME");
    command.AddNumber("--frames", options.frames, 1, "Number of frames").ValueName("COUNT");
    command.StartGroup("How it runs");
    AddThreadsOption(command, options.threads);
}

void CheckOutputOptions(const OutputOptions& options)
{
    if (options.audioOnly && options.videoOnly) {
        throw UsageError("--audio-only and --video-only exclude each other");
    }
    if (options.to && options.frames) {
        throw UsageError("--to and --frames exclude each other");
    }
    if (options.from && options.to && *options.to < *options.from) {
        throw UsageError(
            fmt::format("--to {} comes before --from {}; --to is the last frame", *options.to, *options.from));
    }
}

const Container& FormatNamed(const std::string& name)
{
    const Container* container = exporting::ContainerNamed(name);
    if (container == nullptr) {
        throw UsageError(fmt::format("--format {} is not known; there are {}{}", name,
                                     exporting::ContainerNames(),
                                     DidYouMean(name, NamesOfRows(exporting::AllContainers()))));
    }
    return *container;
}

const Container& ContainerFor(const std::string& format, const std::string& output)
{
    if (!format.empty()) {
        return FormatNamed(format);
    }
    if (output == "-") {
        throw UsageError(
            fmt::format("writing to standard output needs --format: one of {}", exporting::ContainerNames()));
    }
    std::string extension = qelcore::text::UTF8Text(std::filesystem::path(output).extension());
    if (!extension.empty()) {
        extension.erase(0, 1);
    }
    const Container* container = exporting::ContainerNamed(extension);
    if (container == nullptr) {
        throw UsageError(fmt::format(
            "'{}': no format has this extension; the formats are {} (or give --format){}", output,
            exporting::ContainerNames(), DidYouMean(extension, NamesOfRows(exporting::AllContainers()))));
    }
    return *container;
}

exporting::OutputRequest RequestFor(const OutputOptions& options, const Container& container,
                                    const std::string& timecode)
{
    exporting::OutputRequest request;
    request.container = &container;
    request.timecode = timecode;
    if (options.audioOnly) {
        request.streams = exporting::Streams::AudioOnly;
    } else if (options.videoOnly) {
        request.streams = exporting::Streams::VideoOnly;
    }
    if (!options.videoCodec.empty()) {
        request.videoCodec = exporting::VideoCodecNamed(options.videoCodec);
        if (request.videoCodec == nullptr) {
            throw UsageError(fmt::format("--video-codec {} is not known; there are {}{}", options.videoCodec,
                                         exporting::VideoCodecNames(),
                                         DidYouMeanCodec(options.videoCodec, exporting::AllVideoCodecs())));
        }
    }
    if (!options.audioCodec.empty()) {
        request.audioCodec = exporting::AudioCodecNamed(options.audioCodec);
        if (request.audioCodec == nullptr) {
            throw UsageError(fmt::format("--audio-codec {} is not known; there are {}{}", options.audioCodec,
                                         exporting::AudioCodecNames(),
                                         DidYouMeanCodec(options.audioCodec, exporting::AllAudioCodecs())));
        }
    }
    if (options.quality) {
        request.quality =
            static_cast<int>(std::min<std::int64_t>(*options.quality, 1000)); // no scale is longer
    }
    request.dither = options.dither ? exporting::Dither::Triangular : exporting::Dither::None;
    try {
        exporting::CheckRequest(request);
        RequireTimecodeForm(timecode);
    } catch (const ExportError& error) {
        throw UsageError(error.what());
    }
    return request;
}

} // namespace tessel::cli
