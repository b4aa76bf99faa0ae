/// New documents from settings as people type them.
#pragma once

#include "Settings.h"

#include <tessel/document/settings/DocumentEditor.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::typed {

/// A document with a clip that can be played.
struct NewClip {
    std::string text;                  ///< in canonical form
    std::vector<std::string> warnings; ///< what works and is perhaps not meant, a line each
};

/// Each throws SettingError for a change that cannot be, and for a clip that could not be played with it.
/// @param prefix  what stands before a setting's name in messages: "--"
/// @{

/// @param templateName  of `document::AllTemplates`; empty: the first
[[nodiscard]] NewClip ClipFromTemplate(const std::string& templateName, const Changes& changes,
                                       std::string_view prefix);

/// Keys that are no settings stay.
[[nodiscard]] NewClip ClipFromDocument(document::DocumentEditor base, const Changes& changes,
                                       std::string_view prefix);

/// @}

/// A document to begin with. @throws importhost::HostError  where the plug-in would not read it @{
[[nodiscard]] document::DocumentEditor ReadableDocument(std::string text);
/// The message names the file.
[[nodiscard]] document::DocumentEditor ReadableDocumentFile(const std::filesystem::path& file);
/// @}

} // namespace tessel::typed
