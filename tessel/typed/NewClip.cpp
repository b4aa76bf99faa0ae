#include "NewClip.h"

#include "NearMisses.h"
#include "SettingError.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/document/settings/DocumentRules.h>
#include <tessel/document/settings/NewDocument.h>
#include <tessel/document/settings/Templates.h>

#include <fmt/format.h>

#include <utility>

namespace tessel::typed {
namespace {

using document::DocumentEditor;
using importhost::DisplayName;
using importhost::HostError;

const document::Template& TemplateOf(const std::string& name, std::string_view prefix)
{
    if (name.empty()) {
        return document::AllTemplates().front();
    }
    const document::Template* found = document::TemplateNamed(name);
    if (found == nullptr) {
        const auto names = NamesOfRows(document::AllTemplates());
        throw SettingError(fmt::format("{}template: must be one of {}, not \"{}\"{}", prefix,
                                       fmt::join(names, ", "), name, DidYouMean(name, names)));
    }
    return *found;
}

} // namespace

NewClip ClipFromTemplate(const std::string& templateName, const Changes& changes, std::string_view prefix)
{
    const document::Template& base = TemplateOf(templateName, prefix);
    return ClipFromDocument(DocumentEditor(document::NewDocument()),
                            {Merged(ParseSettings(base.settings), changes.settings), changes.keys}, prefix);
}

NewClip ClipFromDocument(DocumentEditor base, const Changes& changes, std::string_view prefix)
{
    NewClip made;
    made.warnings = ApplyChanges(changes, prefix, base);
    if (const auto problem = document::ReadingProblem(base)) {
        throw SettingError(*problem);
    }
    if (const auto problem = document::PlayingProblem(base)) {
        throw SettingError(*problem);
    }
    for (std::string& warning : document::DocumentWarnings(base)) {
        made.warnings.push_back(std::move(warning));
    }
    made.text = base.CanonicalText();
    return made;
}

DocumentEditor ReadableDocument(std::string text)
{
    DocumentEditor document(std::move(text));
    if (const auto problem = document::ReadingProblem(document)) {
        throw HostError(*problem);
    }
    return document;
}

DocumentEditor ReadableDocumentFile(const std::filesystem::path& file)
{
    DocumentEditor document = DocumentEditor::Open(file);
    if (const auto problem = document::ReadingProblem(document)) {
        throw HostError(DisplayName(file) + ": " + *problem);
    }
    return document;
}

} // namespace tessel::typed
