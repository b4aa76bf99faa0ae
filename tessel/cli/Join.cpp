/// `tessel join`: parts to one file.

#include "Commands.h"
#include "OutputOptions.h"
#include "WholeText.h"
#include "movies/FileWork.h"
#include "movies/MovieCommands.h"
#include "movies/RenderReport.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/Join.h>
#include <tessel/export/plan/Container.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using exporting::Container;
using exporting::ContainerKind;
using qelcore::text::UTF8Text;

/// Of the output, or of the pictures where they are only looked for.
const Container& ContainerOf(const JoinOptions& options)
{
    const Container& container = ContainerFor(
        options.out.format, options.output.empty() ? UTF8Text(options.parts.front()) : options.output);
    if (options.output.empty() && container.kind != ContainerKind::Sequence) {
        throw UsageError("-o is missing: the file that the parts become");
    }
    if (!container.TakesVideo() || container.takesEveryCodec) {
        throw UsageError(fmt::format("{} files hold no pictures that could be joined", container.name));
    }
    return container;
}

/// @throws UsageError  where the output is one of the parts
void RequireOtherName(const JoinOptions& options, const Container& container)
{
    const fs::path output = options.output;
    for (const fs::path& part : options.parts) {
        if (container.kind == ContainerKind::Sequence && part.lexically_normal() == output.lexically_normal()) {
            throw UsageError(
                fmt::format("the pictures of '{}' stand there already; leave -o out to look whether "
                            "all are there",
                            options.output));
        }
        if (IsSameFile(part, output)) {
            throw UsageError(fmt::format("'{}' is a part itself; give another name", options.output));
        }
    }
}

void Join(const JoinOptions& options, const exporting::OutputRequest& request, Context& context)
{
    const bool isSequence = request.container->kind == ContainerKind::Sequence;
    FileWork work(options.clip, options.output, options.how, context);
    exporting::RenderJob job = work.StartJob(request, options.out);
    work.Do([&] {
        job.frames = FramesFor(options.out, work.Clip().facts);
        const exporting::PlannedRender planned(work.Source(), job);
        const exporting::OutputPlan& plan = planned.Plan();
        std::vector<exporting::PlacedPart> parts;
        if (!isSequence) {
            parts = exporting::PlaceParts(options.parts, plan, job.frames, work.DocumentDigest());
        }
        if (options.how.dryRun) {
            WriteOut(
                Announcement(work.Name(), plan,
                             fmt::format("{} from {} {}", CountedFrames(job.frames.count), options.parts.size(),
                                         options.parts.size() == 1 ? "part" : "parts")));
            return;
        }
        if (options.output.empty()) {
            job.target.clear();
            exporting::JoinSequence(options.parts, job, plan);
            if (!options.how.quiet) {
                WriteNote(fmt::format("{}: all pictures are there, frames {} to {}",
                                      UTF8Text(options.parts.front()), job.frames.first, job.frames.Last()));
            }
            return;
        }
        work.RunAndReport(plan, job.frames.count, [&] {
            return isSequence ? exporting::JoinSequence(options.parts, job, plan)
                              : exporting::JoinMovie(work.Source(), job, plan, parts);
        });
    });
}

} // namespace

void RunJoin(const JoinOptions& options, Context& context)
{
    CheckOutputOptions(options.out);
    if (options.out.audioOnly) {
        throw UsageError(
            "join puts pictures together: remove --audio-only, or use 'tessel render' for the sound");
    }
    const Container& container = ContainerOf(options);
    RequireOtherName(options, container);
    const exporting::OutputRequest request = RequestFor(options.out, container, options.timecode);
    RunInterruptibly([&] { Join(options, request, context); });
}

} // namespace tessel::cli
