#include "WholeFile.h"

#include <array>
#include <cstddef>
#include <fstream>
#include <system_error>
#include <utility>

namespace qelcore::files {

std::optional<std::string> ReadWholeFile(const std::filesystem::path& file)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    std::string bytes;
    std::array<char, 16384> part{};
    do {
        // Not through the stream's buffer: it reports a failed read by an exception, or as the file's end.
        stream.read(part.data(), part.size());
        bytes.append(part.data(), static_cast<std::size_t>(stream.gcount()));
    } while (stream);
    return stream.eof() && !stream.bad() ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace qelcore::files
