/// Texts that commands write into files beside their result: reports, hashes, tables.
#pragma once

#include <tessel/export/files/OutputFile.h>

#include <filesystem>
#include <string_view>

namespace tessel::cli {

/// Fills the file and gives it its name. @throws exporting::ExportError  naming the file; an earlier one of
/// that name is then as it was
void WriteAndCommit(exporting::OutputFile& file, std::string_view text);

/// Whether two paths are one name, or two names of one file: a text in one would replace the other.
[[nodiscard]] bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

} // namespace tessel::cli
