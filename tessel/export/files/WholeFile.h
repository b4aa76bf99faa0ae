/// What is done with files as a whole: names for messages, all bytes.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tessel::exporting {

/// A file's name for a message: "'out/movie.mov'".
[[nodiscard]] std::string QuotedName(const std::filesystem::path& file);

/// The bytes of a file. @throws ExportError  naming the file, where it cannot be read
[[nodiscard]] std::vector<std::byte> ReadFileBytes(const std::filesystem::path& file);

} // namespace tessel::exporting
