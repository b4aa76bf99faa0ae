#include "WholeFile.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <span>
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
    const std::vector<char> letters((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream.is_open() || stream.bad()) {
        throw ExportError("cannot read " + QuotedName(file) + ": " + std::generic_category().message(errno));
    }
    const std::span<const std::byte> bytes = std::as_bytes(std::span(letters));
    return {bytes.begin(), bytes.end()};
}

} // namespace tessel::exporting
