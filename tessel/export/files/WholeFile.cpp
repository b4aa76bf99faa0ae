#include "WholeFile.h"

#include <kestrel/qelcore/text/LetterCase.h>
#include <kestrel/qelcore/text/PathText.h>
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
        std::string reason = std::generic_category().message(errno);
        reason.front() = qelcore::text::LowerCase(reason.front()); // it ends a line of ours
        throw ExportError("cannot read " + QuotedName(file) + ": " + reason);
    }
    return bytes;
}

} // namespace tessel::exporting
