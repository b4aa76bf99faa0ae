#include "WholeFile.h"

#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/ReasonText.h>
#include <tessel/export/ExportError.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <span>
#include <string>
#include <system_error>

namespace tessel::exporting {

std::string QuotedName(const std::filesystem::path& file)
{
    return '\'' + qelcore::text::UTF8Text(file) + '\'';
}

std::vector<std::byte> ReadFileBytes(const std::filesystem::path& file)
{
    errno = 0;
    std::ifstream stream(file, std::ios::binary);
    std::vector<std::byte> bytes;
    std::array<char, 65536> part;
    do {
        // Not through the stream's buffer: it reports a failed read by an exception, or as the file's end.
        stream.read(part.data(), part.size());
        const auto read = std::as_bytes(std::span(part).first(static_cast<std::size_t>(stream.gcount())));
        bytes.insert(bytes.end(), read.begin(), read.end());
    } while (stream);
    if (!stream.eof() || stream.bad()) {
        const std::error_code error(errno, std::generic_category());
        throw ExportError("cannot read " + QuotedName(file) + ": " + qelcore::text::ReasonText(error));
    }
    return bytes;
}

} // namespace tessel::exporting
