/// `tessel set`: settings of a document, from scripts.

#include "CommandLine.h"
#include "Commands.h"
#include "EditedDocument.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/document/settings/DocumentEditor.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/typed/SettingError.h>
#include <tessel/typed/Settings.h>

#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace tessel::cli {
namespace {

namespace fs = std::filesystem;
using document::DocumentEditor;
using importhost::DisplayName;
using importhost::HostError;

struct SetOptions {
    fs::path clip;
    std::vector<std::string> assignments;
};

/// As `typed::ApplyChanges`, with the document's name in front of what is wrong.
std::vector<std::string> Apply(const typed::Changes& changes, DocumentEditor& document, const std::string& name)
{
    try {
        return typed::ApplyChanges(changes, /*prefix=*/"", document);
    } catch (const typed::SettingError& error) {
        throw typed::SettingError(name + ": " + error.what());
    }
}

void RunSet(const SetOptions& options)
{
    importhost::RequireUTF8Name(options.clip);
    const std::string name = DisplayName(options.clip);
    if (std::error_code error; !fs::exists(options.clip, error)) {
        throw HostError(name + ": no such file; tessel new makes one");
    }
    DocumentEditor document = DocumentEditor::Open(options.clip);
    const std::string before = document.Text();
    const auto playingBefore = document::PlayingProblem(document);
    std::vector<std::string> warnings = Apply(typed::ReadChanges(options.assignments), document, name);
    if (const auto problem = document::ReadingProblem(document)) {
        throw HostError(name + ": " + *problem);
    }
    if (const auto problem = document::PlayingProblem(document)) {
        // What did not work before need not be put right by this change.
        if (problem != playingBefore) {
            throw UsageError(name + ": " + *problem);
        }
        warnings.push_back(*problem);
    }
    for (std::string& warning : document::DocumentWarnings(document)) {
        warnings.push_back(std::move(warning));
    }
    const std::string begin = "warning: " + name + ": ";
    for (const std::string& warning : warnings) {
        WriteError(begin + warning);
    }
    if (document.Text() == before) {
        return;
    }
    if (const auto failure = WriteDocument(options.clip, document.Text())) {
        throw HostError(name + ": cannot be written: " + *failure);
    }
}

} // namespace

void AddSetCommand(CommandLine& commandLine)
{
    const auto options = std::make_shared<SetOptions>();
    const Command command = commandLine.AddCommand("set", "Change settings of a document");
    std::string settings;
    for (const typed::Setting& setting : typed::AllSettings()) {
        settings += fmt::format("  {:<14}{}\n", setting.name, setting.value);
    }
    command.SetDescription("A KEY is one of these, with values as tessel new takes them, or one of the "
                           "document's own keys, such as "
                           "mFrameWidth or mFramePAR.numerator, with a value in JSON.\n"
                           "\n" +
                           settings +
                           "\n"
                           "Nothing else of the document changes: order, blanks and keys that are no settings "
                           "stay. A change after which "
                           "the clip could not be played is refused, and the file stays as it was.");
    command.AddOption("CLIP", options->clip, "The document to change").Required().TakesFile(FileKind::Clip);
    command.AddOption("KEY=VALUE", options->assignments, "Settings and their new values").Required();
    command.AddExample("tessel set clip.tessel rate=29.97 duration=300f", "Another rate, 300 frames long");
    command.AddExample("tessel set clip.tessel tone=440:-20 number=off", "Another tone, and no frame number");
    command.AddExample("tessel set clip.tessel mUpperFieldColor.mRedPart=0.75", "A key of the document itself");
    command.OnRun([options] { RunSet(*options); });
}

} // namespace tessel::cli
