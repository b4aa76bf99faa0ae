/// `tessel render`: clips to files.

#include "Commands.h"
#include "OutputOptions.h"
#include "RenderTargets.h"
#include "WholeText.h"
#include "movies/FrameHashes.h"
#include "movies/MovieCommands.h"
#include "movies/TruthTable.h"

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

using Options = RenderOptions;

namespace fs = std::filesystem;
using exporting::Container;
using exporting::ExportError;
using qelcore::text::UTF8Text;

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

/// What a dry run prints about a file.
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

/// What a render tells beside its file: hashes, a comparison with earlier ones, the truth of each picture.
class Witnesses {
public:
    /// Starts the files, so that a place that takes none ends the work before it begins.
    explicit Witnesses(const Options& options)
    {
        if (!options.verify.empty()) {
            mExpected.emplace(options.verify);
        }
        if (!options.hashes.empty()) {
            mHashFile.emplace(options.hashes);
        }
        if (!options.truth.empty()) {
            mTruthFile.emplace(options.truth);
        }
    }

    /// What the render is to tell; null for nothing.
    /// @param plan, facts  borrowed while this lives
    const exporting::RenderRecord* Watch(const exporting::OutputPlan& plan, const document::OpenedClip& clip,
                                         exporting::FrameRange frames)
    {
        if (!mExpected && !mHashFile && !mTruthFile) {
            return nullptr;
        }
        if (mTruthFile && !plan.video) {
            throw ExportError("--truth describes pictures, but only sound is rendered: remove --truth");
        }
        mRecord.algorithm = mExpected ? mExpected->Algorithm() : mRecord.algorithm;
        mRecord.digestsCoded = mExpected || mHashFile;
        mRecord.digestsPainted = mTruthFile.has_value();
        mHashes.emplace(plan, mRecord.algorithm);
        if (mTruthFile) {
            mTruth.emplace(clip.facts, clip.clip.File(), frames, plan);
        }
        mRecord.picture = [this, &plan](std::int64_t index, const exporting::PictureDigests& digests) {
            if (mTruth) {
                mTruth->AddPicture(index, digests.painted);
            }
            if (mRecord.digestsCoded) {
                mHashes->AddPicture(index, digests.coded);
                Compare(plan);
            }
        };
        if (mRecord.digestsCoded) {
            mRecord.sound = [this, &plan](std::int64_t start, std::int64_t count,
                                          const exporting::Digest& digest) {
                mHashes->AddSound(start, count, digest);
                Compare(plan);
            };
        }
        mRecord.beforeCommit = [this, &plan] {
            if (mExpected) {
                mExpected->RequireEnd(plan);
            }
        };
        return &mRecord;
    }

    /// Writes the files of a render that has succeeded.
    void Commit()
    {
        if (mHashFile) {
            WriteAndCommit(*mHashFile, mHashes->Text());
        }
        if (mTruthFile) {
            WriteAndCommit(*mTruthFile, mTruth->Text());
        }
    }

private:
    void Compare(const exporting::OutputPlan& plan)
    {
        if (mExpected) {
            mExpected->Compare(mHashes->Lines().back(), plan);
        }
    }

    exporting::RenderRecord mRecord;
    std::optional<ExpectedHashes> mExpected;
    std::optional<exporting::OutputFile> mHashFile;
    std::optional<exporting::OutputFile> mTruthFile;
    std::optional<FrameHashes> mHashes;
    std::optional<TruthTable> mTruth;
};

/// @throws UsageError  where files of several clips, or of one render, would have the same name
void CheckWitnesses(const Options& options)
{
    const bool hasWitness = !options.hashes.empty() || !options.verify.empty() || !options.truth.empty();
    if (hasWitness && options.clips.size() > 1) {
        throw UsageError("--hash, --verify and --truth are for one clip; render the clips one by one");
    }
    if (!options.hashes.empty() && options.hashes == options.truth) {
        throw UsageError("--hash and --truth name the same file");
    }
    for (const fs::path& file : {options.hashes, options.truth}) {
        if (!file.empty() && file == fs::path(options.output)) {
            throw UsageError(
                fmt::format("'{}' is the file that is rendered; give another name", UTF8Text(file)));
        }
    }
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
        exporting::PlannedRender render(source, job);
        const exporting::OutputPlan& plan = render.Plan();
        if (options.dryRun) {
            WriteOut(Announcement(name, plan, job.frames.count));
            return;
        }
        Witnesses witnesses(options);
        render.Tell(witnesses.Watch(plan, clip, job.frames));
        const auto start = std::chrono::steady_clock::now();
        const std::int64_t bytes = render.Run();
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        bar.reset();
        witnesses.Commit();
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

} // namespace

void RunRender(const RenderOptions& options, Context& context)
{
    CheckOutputOptions(options.out);
    CheckWitnesses(options);
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

} // namespace tessel::cli
