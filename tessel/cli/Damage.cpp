/// `tessel damage`: a clip with faults put in on purpose, for testing those who look for faults.

#include "Commands.h"
#include "OutputOptions.h"
#include "WholeText.h"
#include "movies/MovieCommands.h"

#include <kestrel/importhost/PathText.h>
#include <tessel/damage/RenderDamaged.h>
#include <tessel/damage/catalogue/FaultValue.h>
#include <tessel/document/OpenClip.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/OutputFile.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tessel::cli {
namespace {

/// out.mov gets out.mov.truth.json beside it.
std::filesystem::path TruthFile(const std::string& output)
{
    std::filesystem::path file = output;
    file += ".truth.json";
    return file;
}

void WriteTruth(const std::string& output, const std::string& text)
{
    exporting::OutputFile file(TruthFile(output));
    WriteAndCommit(file, text);
}

} // namespace

void RunDamage(const DamageOptions& options, Context& context)
{
    if (options.list) {
        WriteOut(damage::FaultList());
        return;
    }
    if (options.clip.empty() || options.output.empty() || options.faults.empty()) {
        throw UsageError("damage needs a CLIP, at least one --fault and -o OUT, or --list");
    }
    const exporting::Container& container = ContainerFor(options.out.format, options.output);
    const document::OpenedClip opened = context.OpenClip(options.clip);
    const exporting::ClipSource source(opened);
    try {
        const exporting::InterruptGuard guard;
        exporting::RenderJob job;
        job.output = RequestFor(options.out, container);
        job.target = options.output;
        job.threadCount = ThreadCount(options.out);
        job.frames = FramesFor(options.out, opened.facts);
        const std::string truth = damage::RenderDamaged(source, job, options.faults);
        if (options.output != "-") {
            WriteTruth(options.output, truth);
        }
    } catch (const exporting::Interrupted&) {
        exporting::InterruptGuard::EndAsSignalled();
    } catch (const damage::FaultError& error) {
        throw UsageError(error.what());
    }
}

} // namespace tessel::cli
