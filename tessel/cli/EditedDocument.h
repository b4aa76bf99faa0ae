/// Where the settings go that a person has edited.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace tessel::cli {

/// Writes a document so that the file holds the whole old text or the whole new one.
/// @return why it cannot be written, such as "the disk is full"; nothing after success.
[[nodiscard]] std::optional<std::string> WriteDocument(const std::filesystem::path& file,
                                                       const std::string& text);

/// Keeps settings that could not be written to `target`, so that the person's work is not lost: in a new file
/// named after the target ("clip.unsaved.tessel") in its folder, else in the current folder, else in the one
/// for temporary files.
/// @param text  Nothing where the settings are not known.
/// @return what became of them, for the end of an error message: "the settings are kept in
/// 'clip.unsaved.tessel'".
[[nodiscard]] std::string KeepUnsaved(const std::filesystem::path& target,
                                      const std::optional<std::string>& text);

} // namespace tessel::cli
