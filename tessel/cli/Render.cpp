/// `tessel render`: clips to files.

#include "Commands.h"
#include "OutputOptions.h"
#include "RenderTargets.h"
#include "movies/FileWork.h"
#include "movies/MovieCommands.h"
#include "movies/RenderReport.h"
#include "movies/Witnesses.h"

#include <tessel/export/Parts.h>
#include <tessel/export/Render.h>
#include <tessel/export/files/OutputFolder.h>
#include <tessel/export/files/SequenceWriter.h>
#include <tessel/export/plan/Container.h>

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tessel::cli {
namespace {

using exporting::Container;

/// @throws UsageError  where the part is not K/N, or does not go with the other options
std::optional<exporting::PartNumber> PartOf(const RenderOptions& options, const TargetOptions& where,
                                            const Container& container)
{
    if (options.part.empty()) {
        return std::nullopt;
    }
    const std::optional<exporting::PartNumber> part = exporting::PartNumber::Parse(options.part);
    if (!part) {
        throw UsageError(
            fmt::format("--part {} is not known: it is K/N, part K of N, with K from 1 to N and N up "
                        "to {}",
                        options.part, exporting::PartNumber::kMost));
    }
    if (options.out.audioOnly || !container.TakesVideo()) {
        throw UsageError("--part divides pictures; 'tessel join' renders the sound: remove --part, or write "
                         "pictures");
    }
    if (!options.timecode.empty()) {
        throw UsageError("a part has no timecode of its own: give --timecode to 'tessel join'");
    }
    if (NamesFolder(where) && container.kind != exporting::ContainerKind::Sequence) {
        throw UsageError(fmt::format("in a folder all parts of a clip would have one name; name the part's "
                                     "file, as in -o clip.{}.{}",
                                     part->number, container.name));
    }
    return part;
}

void RenderOne(const RenderOptions& options, const RenderTarget& target,
               const exporting::OutputRequest& request, const std::optional<exporting::PartNumber>& part,
               Context& context)
{
    FileWork work(target.clip, target.output, options.how, context);
    exporting::RenderJob job = work.StartJob(request, options.out);
    work.Do([&] {
        const exporting::FrameRange whole = FramesFor(options.out, work.Clip().facts);
        job.frames = part ? exporting::FramesOfPart(whole, *part) : whole;
        exporting::PlannedRender render(work.Source(), job);
        const exporting::OutputPlan& plan = render.Plan();
        if (plan.container->kind == exporting::ContainerKind::Sequence) {
            exporting::RequireNames(target.output, job.frames.count); // a dry run says it, too
        }
        if (part) {
            exporting::RequireJoinable(plan);
            render.MarkAsPart(
                {*part, job.frames, work.DocumentDigest(), exporting::CodedPictureText(*plan.video)},
                job.frames.first - whole.first);
        }
        if (options.how.dryRun) {
            const std::string frames = CountedFrames(job.frames.count);
            WriteOut(Announcement(work.Name(), plan,
                                  part ? fmt::format("{} ({} to {}, part {})", frames, job.frames.first,
                                                     job.frames.Last(), part->Text())
                                       : frames));
            return;
        }
        Witnesses witnesses(options);
        render.Tell(witnesses.Watch(plan, work.Clip(), job.frames));
        work.RunAndReport(plan, job.frames.count, [&] {
            const std::int64_t bytes = render.Run();
            witnesses.Commit();
            return bytes;
        });
    });
}

} // namespace

void RunRender(const RenderOptions& options, Context& context)
{
    CheckOutputOptions(options.out);
    const TargetOptions where{options.clips, options.output, options.out.format};
    const std::vector<RenderTarget> targets = TargetsOf(where);
    Witnesses::Check(options, targets.front().output);
    // All targets are of one format.
    exporting::OutputRequest request = RequestFor(options.out, *targets.front().container, options.timecode);
    const std::optional<exporting::PartNumber> part = PartOf(options, where, *request.container);
    if (part) {
        request.streams = exporting::Streams::VideoOnly;
    }
    RunInterruptibly([&] {
        std::optional<exporting::OutputFolder> folder;
        if (NamesFolder(where) && !options.how.dryRun) {
            folder.emplace(options.output, exporting::OutputFolder::Missing::All);
        }
        for (const RenderTarget& target : targets) {
            RenderOne(options, target, request, part, context);
        }
    });
}

} // namespace tessel::cli
