/// The part of the C interface that makes documents.

#include "Results.h"
#include "Structures.h"
#include "tessel.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/Unicode.h>
#include <tessel/typed/NewClip.h>
#include <tessel/typed/SettingError.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What callers hold.
struct tessel_document {
    tessel::typed::NewClip made;
    std::string warning;
};

namespace {

using tessel::api::CallError;
using tessel::api::Require;
using tessel::api::Serve;
using tessel::typed::Changes;
using tessel::typed::NewClip;

/// Settings have no other prefix in messages than their names.
constexpr std::string_view kPrefix;

Changes ReadChanges(const char* const* settings, std::size_t count)
{
    Require(settings != nullptr || count == 0, "the settings are a null pointer");
    std::vector<std::string> texts;
    for (std::size_t index = 0; index < count; ++index) {
        Require(settings[index] != nullptr, "a setting is a null pointer");
        texts.emplace_back(settings[index]);
        if (!qelcore::text::ToUTF16Strict(texts.back())) {
            throw tessel::typed::SettingError('"' + importhost::OneLine(qelcore::text::Repaired(texts.back())) +
                                              "\": expected UTF-8");
        }
    }
    return tessel::typed::ReadChanges(texts);
}

NewClip MakeNew(const tessel_document_options& options, const Changes& changes)
{
    const int bases = (options.template_name != nullptr ? 1 : 0) + (options.file != nullptr ? 1 : 0) +
                      (options.text != nullptr ? 1 : 0);
    Require(bases <= 1, "a document begins with a template, a file or a text, not with several of them");
    if (options.file != nullptr) {
        const auto file = qelcore::text::PathOf(options.file);
        importhost::RequireUTF8Name(file);
        return ClipFromDocument(tessel::typed::ReadableDocumentFile(file), changes, kPrefix);
    }
    if (options.text != nullptr) {
        return ClipFromDocument(tessel::typed::ReadableDocument(std::string(options.text, options.text_length)),
                                changes, kPrefix);
    }
    return tessel::typed::ClipFromTemplate(options.template_name != nullptr ? options.template_name : "",
                                           changes, kPrefix);
}

/// Runs `make`. @throws CallError  for what it refuses; the line shows control characters of what was typed
template <typename Make>
NewClip Refusing(const Make& make)
{
    try {
        return make();
    } catch (const tessel::typed::SettingError& error) {
        throw CallError(TESSEL_REFUSED, importhost::OneLine(error.what()));
    }
}

tessel_document Held(NewClip made)
{
    std::string warning;
    for (const std::string& line : made.warnings) {
        if (!warning.empty()) {
            warning += '\n';
        }
        warning += importhost::OneLine(line);
    }
    return {std::move(made), std::move(warning)};
}

} // namespace

tessel_result tessel_document_new(const tessel_document_options* options, const char* const* settings,
                                  size_t setting_count, tessel_document** document)
{
    return Serve(TESSEL_NOT_OPENED, [&] {
        Require(document != nullptr, "the place for the document is a null pointer");
        const tessel_document_options taken = tessel::api::Taken(options);
        NewClip made = Refusing([&] { return MakeNew(taken, ReadChanges(settings, setting_count)); });
        *document = std::make_unique<tessel_document>(Held(std::move(made))).release();
    });
}

tessel_result tessel_document_set(tessel_document* document, const char* const* settings, size_t setting_count)
{
    return Serve(TESSEL_FAILED, [&] {
        Require(document != nullptr, "the document is a null pointer");
        *document = Held(Refusing([&] {
            return ClipFromDocument(tessel::document::DocumentEditor(document->made.text),
                                    ReadChanges(settings, setting_count), kPrefix);
        }));
    });
}

const char* tessel_document_text(const tessel_document* document, size_t* length)
{
    if (length != nullptr) {
        *length = document != nullptr ? document->made.text.size() : 0;
    }
    return document != nullptr ? document->made.text.c_str() : "";
}

const char* tessel_document_warning(const tessel_document* document)
{
    return document != nullptr ? document->warning.c_str() : "";
}

void tessel_document_close(tessel_document* document)
{
    delete document;
}
