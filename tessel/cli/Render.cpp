/// `tessel render`: clips to files.

#include "CommandLine.h"
#include "Commands.h"
#include "OutputOptions.h"
#include "RenderTargets.h"

#include <kestrel/importhost/Clip.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/Render.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/export/files/OutputFolder.h>
#include <tessel/export/plan/Container.h>
#include <tessel/export/plan/PlanText.h>

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
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
    OutputOptions out;
    std::string timecode;
    bool allowDefault = false;
    bool dryRun = false;
    bool noProgress = false;
    bool quiet = false;
};

exporting::OutputRequest RequestOf(const Options& options, const Container& container)
{
    exporting::OutputRequest request = RequestFor(options.out, container);
    request.timecode = options.timecode;
    try {
        exporting::CheckRequest(request);
    } catch (const ExportError& error) {
        throw UsageError(error.what());
    }
    return request;
}

/// What a dry run says of a file.
std::string Announcement(const std::string& name, const exporting::OutputPlan& plan, std::int64_t frames)
{
    std::string text =
        fmt::format("{}: {}, {} {}\n", name, plan.container->name, frames, frames == 1 ? "frame" : "frames");
    const auto add = [&text](std::string_view key, std::string_view value) {
        text += fmt::format("  {:<10}{}\n", key, value);
    };
    if (plan.video) {
        add("picture", exporting::DescribeVideo(*plan.video));
        add("tags", exporting::DescribeTags(*plan.video));
    }
    if (plan.timecode) {
        add("timecode", plan.timecode->After(0));
    }
    if (plan.audio) {
        add("sound", exporting::DescribeAudio(*plan.audio));
    }
    for (const std::string& loss : exporting::LossesOf(plan)) {
        add("not said", loss);
    }
    return text;
}

/// What was written, as what, how large and how fast.
std::string ClosingLine(const std::string& name, const exporting::OutputPlan& plan, std::int64_t frames,
                        const importhost::ClipDescription& clip, std::int64_t bytes, double seconds)
{
    std::string line = name + ": ";
    if (plan.video) {
        line += fmt::format("{} {} of {}", frames, frames == 1 ? "frame" : "frames",
                            exporting::DescribeVideo(*plan.video));
    }
    if (plan.audio) {
        line += (plan.video ? "; " : "") + exporting::DescribeAudio(*plan.audio);
    }
    if (!plan.container->takesEveryCodec) {
        line += fmt::format("; {:.1f} MB", static_cast<double>(bytes) / 1e6);
    }
    const double clipSeconds = static_cast<double>(frames) * clip.sampleSize / clip.timeScale;
    const double least = std::max(seconds, 1e-6);
    return line + fmt::format("; {:.1f} s, {:.1f} frames a second, {:.2f} times real time", seconds,
                              static_cast<double>(frames) / least, clipSeconds / least);
}

void RenderOne(const Options& options, const RenderTarget& target, const exporting::OutputRequest& request,
               Context& context)
{
    std::error_code ignored;
    const bool isFile = !target.output.empty() && target.output != "-";
    if (isFile && fs::equivalent(target.clip, target.output, ignored)) {
        throw ExportError(fmt::format("'{}' is the clip itself; give another name", UTF8Text(target.output)));
    }
    document::OpenOptions open;
    open.allowDefault = options.allowDefault;
    const document::OpenedClip clip = context.OpenClip(target.clip, open);
    const exporting::ClipSource source(clip);
    const std::string name = UTF8Text(isFile ? target.output : target.clip);

    exporting::RenderJob job;
    job.output = request;
    job.target = isFile ? target.output : fs::path("-");
    job.threadCount = ThreadCount(options.out);
    std::optional<exporting::ProgressBar> bar;
    if (!options.noProgress && !options.quiet && !options.dryRun && exporting::StandardErrorIsTerminal()) {
        bar.emplace(UTF8Text(qelcore::text::PathOf(name).filename()));
        job.progress = &*bar;
    }
    try {
        job.frames = FramesFor(options.out, clip.facts);
        const exporting::PlannedRender render(source, job);
        const exporting::OutputPlan& plan = render.Plan();
        if (options.dryRun) {
            WriteOut(Announcement(name, plan, job.frames.count));
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const std::int64_t bytes = render.Run();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        bar.reset();
        if (!options.quiet) {
            for (const std::string& loss : exporting::LossesOf(plan)) {
                WriteNote(fmt::format("{}: {} files do not say this of the clip: {}", name,
                                      plan.container->name, loss));
            }
            WriteNote(ClosingLine(name, plan, job.frames.count, clip.facts, bytes, seconds.count()));
        }
    } catch (const ExportError& error) {
        const std::string line = error.what();
        const bool namesFile = isFile && line.find(UTF8Text(target.output)) != std::string::npos;
        throw ExportError(
            namesFile || target.output == "-" ? line : fmt::format("{}: {}", UTF8Text(target.clip), line));
    }
}

void RunRender(const Options& options, Context& context)
{
    CheckOutputOptions(options.out);
    const TargetOptions where{options.clips, options.output, options.out.format};
    const std::vector<RenderTarget> targets = TargetsOf(where);
    // All targets are of one format.
    const exporting::OutputRequest request = RequestOf(options, *targets.front().container);
    try {
        const exporting::InterruptGuard guard;
        std::optional<exporting::OutputFolder> folder;
        if (NamesFolder(where) && !options.dryRun) {
            folder.emplace(options.output, exporting::OutputFolder::Missing::All);
        }
        for (const RenderTarget& target : targets) {
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
    command.AddOption("CLIP", options->clips, "Clips to render").Required().TakesFile(FileKind::Clip);
    command.StartGroup("Output");
    command
        .AddOption("-o,--output", options->output,
                   "File to write, or a folder, or - for standard output; sequences take a number, as in "
                   "out/%06d.exr")
        .ValueName("OUT")
        .TakesFile(FileKind::Any);
    command
        .AddOption(
            "--timecode", options->timecode,
            "Of the file's first picture: 10:00:00:00, or 10:00:00;00 for drop frame; in mov, mxf and mkv")
        .ValueName("TIMECODE");
    AddOutputOptions(command, options->out);
    command.StartGroup("How it runs");
    command.AddFlag("--allow-default", options->allowDefault,
                    "Render a document that cannot be read as the default clip");
    command.AddFlag("--dry-run", options->dryRun,
                    "Only say what would be written, and what of the clip the file would not say");
    command.AddFlag("-q,--quiet", options->quiet, "No progress bar and no closing line");
    command.AddFlag("--no-progress", options->noProgress, "No progress bar");
    command.AddExample("tessel render clip.tessel -o clip.mkv", "Lossless: everything kept");
    command.AddExample("tessel render clip.tessel -o clip.mov", "For an editor");
    command.AddExample("tessel render clip.tessel -o out/%06d.exr --frames 3", "Pictures, float bit for bit");
    command.AddExample("tessel render clip.tessel -o clip.mp4 --video-codec hevc --quality 20",
                       "H.265, with a CRF of 20");
    command.AddExample("tessel render clip.tessel samples/short.tessel -o out/ --format mov",
                       "Several clips into a folder");
    command.AddExample("tessel render clip.tessel -o clip.mxf --dry-run",
                       "What would be written, and what lost");
    command.OnRun([options, &context] { RunRender(*options, context); });
}

} // namespace tessel::cli
