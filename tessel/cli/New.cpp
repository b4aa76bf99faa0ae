/// `tessel new`: a document from options.

#include "CommandLine.h"
#include "Commands.h"
#include "EditedDocument.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/document/settings/Templates.h>
#include <tessel/typed/NearMisses.h>
#include <tessel/typed/NewClip.h>
#include <tessel/typed/SettingError.h>
#include <tessel/typed/Settings.h>

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using importhost::DisplayName;
using importhost::HostError;
using typed::NamesOfRows;

struct NewOptions {
    std::string target;
    std::string output; ///< `-o`, the same
    std::string templateName;
    fs::path from;
    typed::TypedSettings typed;
    bool number = false;
    bool noNumber = false;
    std::vector<std::string> assignments;
    bool force = false;
};

constexpr char kStandardOutput[] = "-";

/// Where the document goes. @throws UsageError
std::string TargetOf(const NewOptions& options)
{
    if (options.target.empty() == options.output.empty()) {
        throw UsageError("new needs one OUT: a file that ends in .tessel, or - for standard output");
    }
    std::string target = options.target.empty() ? options.output : options.target;
    if (target != kStandardOutput) {
        const fs::path file = qelcore::text::PathOf(target);
        importhost::RequireUTF8Name(file);
        if (file.extension() != ".tessel") {
            throw UsageError(
                fmt::format("{}: a file name that ends in .tessel was expected", DisplayName(file)));
        }
    }
    return target;
}

typed::Changes ChangesOf(const NewOptions& options)
{
    if (options.number && options.noNumber) {
        throw UsageError("--number and --no-number exclude each other");
    }
    typed::Changes changes;
    for (const auto& [name, values] : options.typed) {
        if (!values.empty()) {
            changes.settings[name] = values;
        }
    }
    if (options.number || options.noNumber) {
        changes.settings["number"] = {options.number ? "on" : "off"};
    }
    for (const std::string& assignment : options.assignments) {
        try {
            changes.keys.push_back(typed::SplitAssignment(assignment));
        } catch (const typed::SettingError&) {
            throw UsageError(fmt::format(
                "--set: must be KEY=VALUE such as mSteadyToneFrequency=440, not \"{}\"", assignment));
        }
    }
    return changes;
}

typed::NewClip MakeClip(const NewOptions& options)
{
    if (!options.from.empty() && !options.templateName.empty()) {
        throw UsageError("--from and --template exclude each other");
    }
    const typed::Changes changes = ChangesOf(options);
    constexpr char kPrefix[] = "--";
    return options.from.empty()
               ? typed::ClipFromTemplate(options.templateName, changes, kPrefix)
               : typed::ClipFromDocument(typed::ReadableDocumentFile(options.from), changes, kPrefix);
}

void RunNew(const NewOptions& options)
{
    const std::string target = TargetOf(options);
    const typed::NewClip made = MakeClip(options);
    for (const std::string& warning : made.warnings) {
        WriteError("warning: " + warning);
    }
    if (target == kStandardOutput) {
        WriteOut(made.text);
        return;
    }
    const fs::path file = qelcore::text::PathOf(target);
    std::error_code error;
    if (!options.force && fs::exists(fs::symlink_status(file, error))) {
        throw HostError(DisplayName(file) + ": is there already; --force replaces it");
    }
    if (const auto failure = WriteDocument(file, made.text)) {
        throw HostError(DisplayName(file) + ": cannot be written: " + *failure);
    }
}

} // namespace

void AddNewCommand(CommandLine& commandLine)
{
    const auto options = std::make_shared<NewOptions>();
    const Command command = commandLine.AddCommand("new", "Make a document from options");
    command.SetDescription("What no option says comes from a template, or from another document. A clip that "
                           "could not be played is "
                           "refused, and the message says what would work.");
    command.AddOption("OUT", options->target, "The document to write, or - for standard output")
        .TakesFile(FileKind::Clip);
    command.StartGroup("Document");
    command.AddOption("-o,--output", options->output, "The same as OUT")
        .ValueName("OUT")
        .TakesFile(FileKind::Clip);
    command
        .AddOption("--template", options->templateName,
                   "What to begin with; tessel list templates explains them")
        .ValueName("NAME")
        .WithChoices(NamesOfRows(document::AllTemplates()));
    command.AddOption("--from", options->from, "Another document to begin with; keys that are no settings stay")
        .TakesFile(FileKind::Clip);
    command
        .AddOption("--set", options->assignments,
                   "A key of the document itself, as in mSteadyToneFrequency=440")
        .OneEach()
        .ValueName("KEY=VALUE");
    command.AddFlag("--force", options->force, "Replace a file that is there");
    for (const char* group : {"Picture", "Time", "Sound"}) {
        command.StartGroup(group);
        for (const typed::Setting& setting : typed::AllSettings()) {
            if (setting.group != group) {
                continue;
            }
            if (setting.name == "number") {
                command.AddFlag("--number", options->number, std::string(setting.text));
                command.AddFlag("--no-number", options->noNumber, "Leave the frame number out");
                continue;
            }
            const Option option =
                command
                    .AddOption("--" + std::string(setting.name), options->typed[std::string(setting.name)],
                               std::string(setting.text))
                    .OneEach()
                    .ValueName(std::string(setting.value))
                    .TakesFile(setting.namesFiles ? FileKind::Any : FileKind::None);
            if (!setting.takesSeveral) {
                option.Once();
            }
            if (setting.choices != nullptr) {
                option.WithChoices(setting.choices());
            }
        }
    }
    command.AddExample("tessel new hd.tessel --size 1920x1080 --rate 29.97 --duration 10s --pixel-format v210",
                       "Ten seconds of a moving gradient in 10-bit 4:2:2");
    command.AddExample("tessel new fields.tessel --rate 25 --fields upper --picture fields --colors red/blue",
                       "Which field comes first: the upper one is red");
    command.AddExample("tessel new line-up.tessel --ident blits --duration 1m", "A 5.1 line-up");
    command.AddExample("tessel new chart.tessel --template hd-bars", "Colour bars");
    command.AddExample("tessel new chart.tessel --force --pixel-format bgra-float --swatches "
                       "samples/swatch-coordinates.json --swatches samples/swatch-colors.json",
                       "A chart of your own patches");
    command.AddExample("tessel new - --from clip.tessel --tone 440:-20",
                       "Another clip with another tone, printed");
    command.OnRun([options] { RunNew(*options); });
}

} // namespace tessel::cli
