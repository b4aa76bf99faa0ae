/// `tessel render`: clips to files.

#include "CommandLine.h"
#include "Commands.h"

#include <kestrel/importhost/Clip.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/Render.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/export/files/OutputFolder.h>
#include <tessel/export/files/SequenceWriter.h>
#include <tessel/export/plan/Container.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using exporting::Container;
using exporting::ExportError;
using qelcore::text::UTF8Text;

/// The command line as typed.
struct Options {
    std::vector<std::string> clips;
    std::string output;
    std::string format;
    std::string videoCodec;
    std::string audioCodec;
    std::optional<std::int64_t> from;
    std::optional<std::int64_t> to;
    std::optional<std::int64_t> frames;
    std::optional<std::int64_t> quality;
    bool audioOnly = false;
    bool videoOnly = false;
    bool dither = false;
    bool allowDefault = false;
    bool noProgress = false;
    int threads = 0;
};

/// One clip and the file it becomes.
struct Target {
    fs::path clip;
    fs::path output;
    const Container* container = nullptr;
};

const Container& FormatNamed(const std::string& name)
{
    const Container* container = exporting::ContainerNamed(name);
    if (container == nullptr) {
        throw UsageError(
            fmt::format("--format {} is not known; there are {}", name, exporting::ContainerNames()));
    }
    return *container;
}

const Container& ContainerOf(const Options& options)
{
    if (!options.format.empty()) {
        return FormatNamed(options.format);
    }
    if (options.output == "-") {
        throw UsageError(
            fmt::format("writing to standard output needs --format: one of {}", exporting::ContainerNames()));
    }
    std::string extension = UTF8Text(fs::path(options.output).extension());
    if (!extension.empty()) {
        extension.erase(0, 1);
    }
    const Container* container = exporting::ContainerNamed(extension);
    if (container == nullptr) {
        throw UsageError(
            fmt::format("'{}': no format has this extension; the formats are {} (or give --format)",
                        options.output, exporting::ContainerNames()));
    }
    return *container;
}

bool NamesFolder(const Options& options)
{
    std::error_code ignored;
    const char last = options.output.back();
    return options.output != "-" &&
           (options.clips.size() > 1 || last == '/' || fs::is_directory(options.output, ignored));
}

/// The file that a clip becomes inside a folder.
fs::path FileInFolder(const fs::path& folder, const fs::path& clip, const Container& container)
{
    std::string name;
    for (const char letter : UTF8Text(clip.stem())) {
        // In the name of a sequence a lone percent sign would be a number's place.
        name += letter == '%' && container.kind == exporting::ContainerKind::Sequence ? "%%"
                                                                                      : std::string(1, letter);
    }
    const char* number = container.kind == exporting::ContainerKind::Sequence ? "_%06d" : "";
    return folder / fmt::format("{}{}.{}", name, number, container.name);
}

/// Several clips do not fit into one file: what reads like a file's name is not taken for a folder's.
void RequireFolderName(const Options& options)
{
    std::error_code ignored;
    const fs::path path = options.output;
    const bool isNumbered = UTF8Text(path.filename()).find('%') != std::string::npos;
    if ((!path.has_extension() && !isNumbered) || fs::is_directory(path, ignored)) {
        return;
    }
    const std::string extension = path.has_extension() ? UTF8Text(path.extension()).substr(1) : "";
    const fs::path folder = path.parent_path() / (isNumbered ? fs::path("out") : path.stem());
    throw UsageError(fmt::format(
        "several clips cannot all become '{}'; name a folder, as in -o {}/{}", options.output, UTF8Text(folder),
        exporting::ContainerNamed(extension) != nullptr ? " --format " + extension : ""));
}

void RequireSequenceName(const fs::path& file)
{
    try {
        static_cast<void>(exporting::NumberedName::Parse(UTF8Text(file.filename())));
    } catch (const ExportError& error) {
        throw UsageError(error.what());
    }
}

std::vector<Target> TargetsOf(const Options& options)
{
    if (options.clips.size() > 1 && options.output == "-") {
        throw UsageError("several clips cannot share standard output; name a folder");
    }
    if (!NamesFolder(options)) {
        const Target target{options.clips.front(), options.output, &ContainerOf(options)};
        if (target.container->kind == exporting::ContainerKind::Sequence) {
            RequireSequenceName(target.output);
        }
        return {target};
    }
    RequireFolderName(options);
    const Container& container = FormatNamed(options.format.empty() ? "mkv" : options.format);
    std::vector<Target> targets;
    std::set<fs::path> names;
    for (const std::string& clip : options.clips) {
        targets.push_back({clip, FileInFolder(options.output, clip, container), &container});
        if (!names.insert(targets.back().output).second) {
            throw UsageError(fmt::format("two clips would become '{}'; render them one by one",
                                         UTF8Text(targets.back().output)));
        }
    }
    return targets;
}

exporting::OutputRequest RequestOf(const Options& options, const Container& container)
{
    exporting::OutputRequest request;
    request.container = &container;
    if (options.audioOnly) {
        request.streams = exporting::Streams::AudioOnly;
    } else if (options.videoOnly) {
        request.streams = exporting::Streams::VideoOnly;
    }
    if (!options.videoCodec.empty()) {
        request.videoCodec = exporting::VideoCodecNamed(options.videoCodec);
        if (request.videoCodec == nullptr) {
            throw UsageError(fmt::format("--video-codec {} is not known; there are {}", options.videoCodec,
                                         exporting::VideoCodecNames()));
        }
    }
    if (!options.audioCodec.empty()) {
        request.audioCodec = exporting::AudioCodecNamed(options.audioCodec);
        if (request.audioCodec == nullptr) {
            throw UsageError(fmt::format("--audio-codec {} is not known; there are {}", options.audioCodec,
                                         exporting::AudioCodecNames()));
        }
    }
    if (options.quality) {
        request.quality =
            static_cast<int>(std::min<std::int64_t>(*options.quality, 1000)); // no scale is longer
    }
    request.dither = options.dither ? exporting::Dither::Triangular : exporting::Dither::None;
    try {
        exporting::CheckRequest(request);
    } catch (const ExportError& error) {
        throw UsageError(error.what());
    }
    return request;
}

void RenderOne(const Options& options, const Target& target, const exporting::OutputRequest& request,
               Context& context)
{
    std::error_code ignored;
    if (target.output != "-" && fs::equivalent(target.clip, target.output, ignored)) {
        throw ExportError(fmt::format("'{}' is the clip itself; give another name", UTF8Text(target.output)));
    }
    document::OpenOptions open;
    open.allowDefault = options.allowDefault;
    const document::OpenedClip clip = context.OpenClip(target.clip, open);
    const exporting::ClipSource source(clip);

    exporting::RenderJob job;
    job.output = request;
    job.target = target.output;
    job.threadCount = options.threads > 0 ? options.threads
                                          : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    std::optional<exporting::ProgressBar> bar;
    if (!options.noProgress && exporting::StandardErrorIsTerminal()) {
        bar.emplace(UTF8Text(target.output.filename()));
        job.progress = &*bar;
    }
    try {
        job.frames = exporting::ChooseFrames(clip.facts, options.from, options.to, options.frames);
        exporting::Render(source, job);
    } catch (const ExportError& error) {
        const std::string line = error.what();
        const bool namesFile = line.find(UTF8Text(target.output)) != std::string::npos;
        throw ExportError(
            namesFile || target.output == "-" ? line : fmt::format("{}: {}", UTF8Text(target.clip), line));
    }
}

void RunRender(const Options& options, Context& context)
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
    const std::vector<Target> targets = TargetsOf(options);
    // All targets are of one format.
    const exporting::OutputRequest request = RequestOf(options, *targets.front().container);
    try {
        const exporting::InterruptGuard guard;
        std::optional<exporting::OutputFolder> folder;
        if (NamesFolder(options)) {
            folder.emplace(options.output, exporting::OutputFolder::Missing::All);
        }
        for (const Target& target : targets) {
            RenderOne(options, target, request, context);
        }
    } catch (const exporting::Interrupted&) {
        // Everything unfinished is gone by now.
        exporting::InterruptGuard::EndAsSignalled();
    }
}

} // namespace

void AddRenderCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<Options>();
    const Command command =
        commandLine.AddCommand("render", "Render clips into movie, sound and picture files");
    command.AddOption("clip", options->clips, "Clips to render").Required().ValueName("CLIP");
    command
        .AddOption("-o,--output", options->output,
                   "File to write, or a folder, or - for standard output; sequences take a number, as in "
                   "out/%06d.exr")
        .Required()
        .ValueName("OUT");
    command.AddOption("--format", options->format,
                      "What to write, where the extension does not say it: " + exporting::ContainerNames());
    command.AddOption("--video-codec", options->videoCodec,
                      "Instead of the one that keeps the clip's format best: " + exporting::VideoCodecNames());
    command.AddOption("--audio-codec", options->audioCodec,
                      "Instead of the container's usual one: " + exporting::AudioCodecNames());
    command
        .AddNumber("--quality", options->quality, 0,
                   "On the codec's own scale, 0 or 1 being the best: CRF of h264, hevc (16), av1 and vp9 (20), "
                   "quantiser of mpeg2 and mjpeg (2)")
        .ValueName("NUMBER");
    command.AddNumber("--from", options->from, 0, "First frame, counted from 0").ValueName("FRAME");
    command.AddNumber("--to", options->to, 0, "Last frame, included").ValueName("FRAME");
    command.AddNumber("--frames", options->frames, 1, "Number of frames").ValueName("COUNT");
    command.AddFlag("--audio-only", options->audioOnly, "Sound alone");
    command.AddFlag("--video-only", options->videoOnly, "Picture alone");
    command.AddFlag("--dither", options->dither, "Triangular dither for integer samples");
    command.AddFlag("--allow-default", options->allowDefault,
                    "Render a document that cannot be read as the default clip");
    command.AddFlag("--no-progress", options->noProgress, "No progress bar");
    command.AddNumber("--threads", options->threads, 1, "Threads to use; all cores where not said");
    command.OnRun([options, &context] { RunRender(*options, context); });
}

} // namespace tessel::cli
