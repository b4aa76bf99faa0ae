/// `tessel info`: what the plug-in reports of clips.

#include "ClipReport.h"
#include "CommandLine.h"
#include "Commands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <memory>
#include <utility>
#include <vector>

namespace tessel::cli {
namespace {

struct InfoOptions {
    std::vector<std::filesystem::path> clips;
    bool json = false;
    bool allowDefault = false;
};

void RunInfo(Context& context, const InfoOptions& options)
{
    document::OpenOptions opening;
    opening.allowDefault = options.allowDefault;
    if (options.clips.size() > 1) {
        (void)context.LoadImporter(); // a plug-in that is not there is one error, not one for each clip
    }
    qelcore::serialization::Array reports;
    bool isFirst = true;
    for (const std::filesystem::path& file : options.clips) {
        try {
            const document::OpenedClip clip = context.OpenClip(file, opening);
            if (options.json) {
                reports.push_back(ReportAsDocument(clip));
            } else {
                if (!std::exchange(isFirst, false)) {
                    WriteOut("\n");
                }
                WriteOut(ReportAsTable(clip));
            }
        } catch (const importhost::HostError& error) {
            if (options.clips.size() == 1) {
                throw;
            }
            // One bad clip does not hide the others.
            WriteError(error.what());
            context.exitCode = kWorkFailed;
        }
    }
    if (!options.json) {
        return;
    }
    const auto document =
        options.clips.size() == 1 ? reports.front() : qelcore::serialization::Value(std::move(reports));
    WriteOut(qelcore::serialization::GetJSONUTF8String(document, /*formatted=*/true) + "\n");
}

} // namespace

void AddInfoCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<InfoOptions>();
    const Command command = commandLine.AddCommand("info", "Show what the plug-in reports of clips");
    command.AddOption("CLIP", options->clips, "Tessel documents").Required().TakesFile(FileKind::Clip);
    command.AddFlag("--json", options->json, "Print JSON: an object for one clip, an array for several");
    command.AddFlag("--allow-default", options->allowDefault,
                    "Take a malformed document as the default clip instead of refusing it");
    command.AddExample("tessel info clip.tessel", "Frame size, format, rate, duration, colour space and sound");
    command.AddExample("tessel info --json samples/*.tessel", "The same of several clips, for scripts");
    command.OnRun([&context, options] { RunInfo(context, *options); });
}

} // namespace tessel::cli
