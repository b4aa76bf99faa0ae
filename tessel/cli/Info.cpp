/// `tessel info`: what the plug-in reports of clips.

#include "ClipReport.h"
#include "Commands.h"
#include "ValueChecks.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/qelcore/serialization/Json.h>

#include <CLI/CLI.hpp>

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
    importhost::OpenOptions opening;
    opening.allowDefault = options.allowDefault;
    if (options.clips.size() > 1) {
        (void)context.LoadImporter(); // a plug-in that is not there is one error, not one for each clip
    }
    qelcore::serialization::Array reports;
    bool isFirst = true;
    for (const std::filesystem::path& file : options.clips) {
        try {
            const importhost::Clip clip = context.OpenClip(file, opening);
            if (options.json) {
                reports.push_back(
                    std::make_shared<const qelcore::serialization::Value>(ReportAsDocument(clip)));
            } else {
                WriteOut((std::exchange(isFirst, false) ? "" : "\n") + ReportAsTable(clip));
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
    if (!options.json || reports.empty()) {
        return;
    }
    const auto document =
        options.clips.size() == 1 ? *reports.front() : qelcore::serialization::Value(std::move(reports));
    WriteOut(qelcore::serialization::GetJSONUTF8String(document, /*formatted=*/true) + "\n");
}

} // namespace

void AddInfoCommand(CLI::App& app, Context& context)
{
    auto options = std::make_shared<InfoOptions>();
    CLI::App* command = app.add_subcommand("info", "Show what the plug-in reports of clips");
    command->add_option("clip", options->clips, "Tessel documents")->required()->check(NotEmpty());
    command->add_flag("--json", options->json, "Print JSON: an object for one clip, an array for several");
    command->add_flag("--allow-default", options->allowDefault,
                      "Take a malformed document as the default clip instead of refusing it");
    command->callback([&context, options] { RunInfo(context, *options); });
}

} // namespace tessel::cli
