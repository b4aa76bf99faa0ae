#include "FileWork.h"

#include "RenderReport.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/cli/Commands.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/encode/Digests.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/export/files/WholeFile.h>

#include <fmt/format.h>

#include <chrono>
#include <system_error>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using exporting::ExportError;
using qelcore::text::UTF8Text;

document::OpenedClip Open(const fs::path& clip, const fs::path& output, const RunOptions& how, Context& context)
{
    std::error_code ignored;
    if (fs::equivalent(clip, output, ignored)) {
        throw UsageError(fmt::format("'{}' is the clip itself; give another name", UTF8Text(output)));
    }
    document::OpenOptions open;
    open.allowDefault = how.allowDefault;
    return context.OpenClip(clip, open);
}

} // namespace

FileWork::FileWork(const fs::path& clip, const fs::path& output, const RunOptions& how, Context& context)
    : mClipFile(clip), mOutput(output), mHow(how), mIsFile(!output.empty() && output != "-"),
      mClip(Open(clip, mIsFile ? output : fs::path(), how, context)), mSource(mClip),
      mName(UTF8Text(mIsFile ? output : clip))
{
}

exporting::RenderJob FileWork::StartJob(const exporting::OutputRequest& request, const OutputOptions& options)
{
    exporting::RenderJob job;
    job.output = request;
    job.target = mIsFile ? mOutput : fs::path("-");
    job.threadCount = ThreadCount(options);
    if (!mHow.noProgress && !mHow.quiet && !mHow.dryRun && exporting::StandardErrorIsTerminal()) {
        mBar.emplace(UTF8Text(qelcore::text::PathOf(mName).filename()));
        job.progress = &*mBar;
    }
    return job;
}

std::string FileWork::DocumentDigest() const
{
    exporting::Hasher hasher("SHA256");
    hasher.Add(exporting::ReadFileBytes(mClipFile));
    return hasher.Take().hex;
}

void FileWork::RunAndReport(const exporting::OutputPlan& plan, std::int64_t frames,
                            const std::function<std::int64_t()>& run)
{
    const auto start = std::chrono::steady_clock::now();
    const std::int64_t bytes = run();
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    mBar.reset();
    if (!mHow.quiet) {
        ReportFinished({mName, frames, bytes, seconds.count()}, plan, mClip.facts);
    }
}

void FileWork::Do(const std::function<void()>& work) const
{
    try {
        work();
    } catch (const exporting::RequestError& error) {
        throw UsageError(NamedLine(error.what()));
    } catch (const ExportError& error) {
        throw ExportError(NamedLine(error.what()));
    }
}

std::string FileWork::NamedLine(const std::string& line) const
{
    const std::string output = mIsFile ? UTF8Text(mOutput) : "standard output";
    const bool namesOutput = line.starts_with(output + ':') || line.starts_with('\'' + output + '\'');
    return namesOutput ? line : fmt::format("{}: {}", UTF8Text(mClipFile), line);
}

void RunInterruptibly(const std::function<void()>& work)
{
    try {
        const exporting::InterruptGuard guard;
        work();
    } catch (const exporting::Interrupted&) {
        // Everything unfinished is gone by now.
        WriteError("interrupted; unfinished files were removed");
        exporting::InterruptGuard::EndAsSignalled();
    }
}

} // namespace tessel::cli
