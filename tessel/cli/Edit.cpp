/// `tessel edit`: the settings dialog, on a document or for a new one.

#include "CommandLine.h"
#include "Commands.h"
#include "EditedDocument.h"
#include "SequenceOptions.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <kestrel/importhost/SettingsExchange.h>
#include <kestrel/importhost/SettingsPreview.h>
#include <kestrel/orb/File.h>
#include <kestrel/orb/SaveReport.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qellumenfactory/UI_NodeManager.h>
#include <kestrel/qelui/toolkit/UserInterface.h>
#include <tessel/document/DialogAdvice.h>
#include <tessel/document/DocumentFacts.h>
#include <tessel/document/DocumentPreview.h>
#include <tessel/document/DroppedKeys.h>
#include <tessel/document/FailureText.h>
#include <tessel/document/settings/KeptLayout.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace tessel::cli {
namespace {

using importhost::DisplayName;
using importhost::EditedSettings;
using importhost::HostError;
using importhost::SettingsDecision;

struct EditOptions {
    std::filesystem::path clip;
    std::filesystem::path out;
    std::filesystem::path script;
    std::string theme = "dark";
    std::string size = "1920x1080";
    std::string rate = "25";
    std::string pixelAspect = "1/1";
    bool hasSequenceValues = false;
    bool allowDefault = false;
};

/// Does what the person decided. @throws HostError  where the settings are not where the person wanted them
/// @param before  the document that was edited, whose layout the new one keeps; empty for a new clip
void KeepDecision(const EditedSettings& edited, const std::string& before, const ORB::SaveReport& lastSave,
                  const std::optional<std::string>& document, const std::filesystem::path& target)
{
    switch (edited.decision) {
    case SettingsDecision::Cancelled:
        return;
    case SettingsDecision::UseFile:
        // The dialog lets a person use a file that could not be saved, also over an older file of that name.
        if (std::error_code error; lastSave.status < 0 || !std::filesystem::exists(edited.newFile, error)) {
            const std::string why = lastSave.status < 0 ? lastSave.failure : "it is no longer there";
            throw HostError(DisplayName(edited.newFile) +
                            ": the file that the clip is to use could not be saved: " + why + "; " +
                            KeepUnsaved(target, document));
        }
        WriteOut(qelcore::text::UTF8Text(edited.newFile) + '\n');
        return;
    case SettingsDecision::Accepted:
        break;
    }
    if (!edited.text) {
        throw HostError(DisplayName(target) +
                        ": the settings are too long to be handed back and are not saved; " +
                        KeepUnsaved(target, document));
    }
    const std::string text = document::InLayoutOf(before, *edited.text); // the plug-in's text is on one line
    if (const auto failure = WriteDocument(target, text)) {
        throw HostError(DisplayName(target) + ": cannot be written: " + *failure + "; " +
                        KeepUnsaved(target, text));
    }
}

/// Shows the dialog.
/// @param lastSave  Receives what became of the last save in the dialog; stays as it is where there was none.
/// @throws HostError  it failed; says where the settings are that it held
EditedSettings ShowDialog(const importhost::Importer& importer, const EditOptions& options,
                          const importhost::SequenceValues& sequence, ORB::SaveReport& lastSave)
{
    const ORB::ScopedSaveListener listener([&lastSave](const ORB::SaveReport& report) { lastSave = report; });
    // At once, because a person may look at the dialog for long.
    const auto warn = [](const qelcore::logging::Message& message) {
        // A script's failure is the error that ends the command.
        if (!document::IsFailureReport(message) && message.context != "qelui.script") {
            WriteError("warning: " + message.text);
        }
    };
    try {
        return options.clip.empty() ? importhost::EditNewClipSettings(importer, sequence, warn)
                                    : importhost::EditClipSettings(importer, options.clip, warn);
    } catch (const importhost::PluginFailure& failure) {
        const std::optional<std::string>& held = qelui::UserInterface::Get().LastDocument();
        const std::filesystem::path& target = options.out.empty() ? options.clip : options.out;
        throw HostError(document::FailureText(failure) +
                        (held ? "; " + KeepUnsaved(target, held) : std::string()));
    }
}

/// Names the keys of the edited document that are no settings: the dialog does not know them, so they are not
/// in the document that takes its place.
void WarnOfDroppedKeys(const std::string& before, const std::string& after, const std::filesystem::path& target)
{
    constexpr std::size_t kMostNamed = 10;
    const std::vector<std::string> dropped = document::DroppedKeys(before, after);
    std::string list;
    for (std::size_t i = 0; i < std::min(dropped.size(), kMostNamed); ++i) {
        list += (i == 0 ? "\"" : ", \"") + dropped[i] + '"';
    }
    if (dropped.size() > kMostNamed) {
        list += " and " + std::to_string(dropped.size() - kMostNamed) + " more";
    }
    if (!dropped.empty()) {
        WriteError("warning: " + DisplayName(target) + ": drops what is not a setting: " + list);
    }
}

/// A document of another name would be refused by everything that opens clips. @throws UsageError
void RequireClipName(const importhost::Importer& importer, const std::filesystem::path& out)
{
    try {
        static_cast<void>(importhost::FileTypeOf(importer, out));
    } catch (const HostError& error) {
        throw UsageError(error.what());
    }
}

/// A new clip begins with default settings: it must not replace a document that somebody meant to edit.
void RequireNoFile(const std::filesystem::path& out)
{
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(out, error))) {
        throw HostError(DisplayName(out) + ": is there already; without -o it is edited");
    }
}

void Edit(Context& context, const EditOptions& options)
{
    const bool isNew = options.clip.empty();
    if (isNew && options.out.empty()) {
        throw UsageError("edit needs a CLIP to edit, or -o OUT to make a new one");
    }
    if (!isNew && options.hasSequenceValues) {
        throw UsageError("--size, --rate and --par are for a new clip (-o OUT without CLIP)");
    }
    const importhost::SequenceValues sequence =
        ParseSequenceValues(options.size, options.rate, options.pixelAspect);
    if (!options.out.empty()) {
        importhost::RequireUTF8Name(options.out);
    }
    if (isNew) {
        RequireNoFile(options.out);
    }
    auto& userInterface = qelui::UserInterface::Get();
    userInterface.SetScriptOption("--script FILE");
    userInterface.SetWindowsPackage("tessel-qt");
    if (!options.script.empty()) {
        userInterface.SetScript(options.script);
    }
    qellumenfactory::UI_NodeManager::Get().SetDefaultDrawSupplier(
        {options.theme == "light" ? qelui::Theme::Light : qelui::Theme::Dark});
    // Whether a dialog can be shown at all is known before anything is loaded.
    static_cast<void>(userInterface.GetToolkit());
    std::string before;
    if (!isNew) {
        const ORB::ScopedReading once;
        // A document that cannot be read would open as the default clip and be lost on OK.
        static_cast<void>(context.OpenClip(options.clip, {.allowDefault = options.allowDefault}));
        before = document::DocumentText(options.clip);
    }

    const auto importer = context.LoadImporter();
    if (!options.out.empty()) {
        RequireClipName(*importer, options.out);
    }
    userInterface.SetPreviewRenderer(
        {.reduce = document::PreviewDocument, .render = [importer](const std::string& reduced) {
             return importhost::RenderSettingsPreview(*importer, reduced);
         }});
    userInterface.SetAdviser([](const qelui::AdviceRequest& request) {
        return document::DialogAdvice(request.control, request.settingsText, request.complaint);
    });
    std::error_code error;
    userInterface.SetFileFolder(
        std::filesystem::absolute(isNew ? options.out : options.clip, error).parent_path());
    ORB::SaveReport lastSave;
    const EditedSettings edited = ShowDialog(*importer, options, sequence, lastSave);
    if (const auto& failure = userInterface.LastScriptFailure()) {
        throw HostError(importhost::OneLine(failure->Describe()));
    }
    if (lastSave.status < 0 && edited.decision != SettingsDecision::UseFile) {
        // The dialog itself is silent about saves by its Save File and OK buttons.
        WriteError("warning: " + qelcore::text::ToUTF8(lastSave.path) +
                   ": could not be saved: " + lastSave.failure);
    }
    const std::filesystem::path& target = options.out.empty() ? options.clip : options.out;
    KeepDecision(edited, before, lastSave, userInterface.LastDocument(), target);
    if (edited.decision == SettingsDecision::Accepted) {
        WarnOfDroppedKeys(before, edited.text.value_or(""), target);
    }
}

} // namespace

void AddEditCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<EditOptions>();
    const Command command = commandLine.AddCommand("edit", "Edit a clip's settings in their dialog");
    command.AddOption("CLIP", options->clip, "The data file to edit; without it a new one is made")
        .TakesFile(FileKind::Clip);
    command.AddOption("-o,--output", options->out, "Write the settings to this file; CLIP stays as it is");
    const Option size = command.AddOption("--size", options->size, "Frame size of a new clip")
                            .ValueName("WIDTHxHEIGHT")
                            .ShowDefault();
    const Option rate =
        command.AddOption("--rate", options->rate, "Frame rate of a new clip: 25, 29.97, 30000/1001")
            .ValueName("RATE")
            .ShowDefault();
    const Option pixelAspect =
        command.AddOption("--par", options->pixelAspect, "Pixel aspect ratio of a new clip: 10/11")
            .ValueName("RATIO")
            .ShowDefault();
    command.AddOption("--script", options->script, "Work the dialog with this script instead of by hand");
    command.AddChoice("--theme", options->theme, {"dark", "light"}, "How the dialog looks").ShowDefault();
    command.AddFlag("--allow-default", options->allowDefault,
                    "Edit a document that cannot be read as if it held the default settings");
    command.SetDescription(
        "OK writes the settings back. Where the person chose to use a saved file instead, its path "
        "is printed and CLIP stays as it is, as it does after Cancel.");
    command.AddExample("tessel edit clip.tessel", "Open the settings dialog on a clip");
    command.AddExample("tessel edit -o new.tessel --size 1280x720 --rate 50", "Make a new clip in the dialog");
    command.OnRun([options, size, rate, pixelAspect, &context] {
        options->hasSequenceValues = size.WasGiven() || rate.WasGiven() || pixelAspect.WasGiven();
        Edit(context, *options);
    });
}

} // namespace tessel::cli
