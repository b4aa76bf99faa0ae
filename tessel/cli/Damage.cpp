/// `tessel damage`: a clip with faults put in on purpose, for testing those who look for faults.

#include "Commands.h"
#include "OutputOptions.h"
#include "WholeText.h"
#include "movies/FileWork.h"
#include "movies/MovieCommands.h"

#include <tessel/damage/RenderDamaged.h>
#include <tessel/damage/catalogue/FaultValue.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/files/OutputFile.h>

#include <filesystem>
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

/// As `damage::RenderDamaged`. @throws RequestError  for faults that cannot be put into the clip
std::string Render(const exporting::SignalSource& source, const exporting::RenderJob& job,
                   const std::vector<std::string>& faults)
{
    try {
        return damage::RenderDamaged(source, job, faults);
    } catch (const damage::FaultError& error) {
        throw exporting::RequestError(error.what());
    }
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
    CheckOutputOptions(options.out);
    const exporting::OutputRequest request =
        RequestFor(options.out, ContainerFor(options.out.format, options.output));
    RunInterruptibly([&] {
        FileWork work(options.clip, options.output, {.noProgress = true}, context);
        exporting::RenderJob job = work.StartJob(request, options.out);
        work.Do([&] {
            job.frames = FramesFor(options.out, work.Clip().facts);
            const std::string truth = Render(work.Source(), job, options.faults);
            if (options.output != "-") {
                WriteTruth(options.output, truth);
            }
        });
    });
}

} // namespace tessel::cli
