#include "WholeFile.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>

#include <fstream>
#include <iterator>
#include <span>

namespace tessel::exporting {

std::string QuotedName(const std::filesystem::path& file)
{
    return '\'' + qelcore::text::UTF8Text(file) + '\'';
}

std::vector<std::byte> ReadFileBytes(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> letters((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream.is_open() || stream.bad()) {
        throw ExportError("cannot read " + QuotedName(file));
    }
    const std::span<const std::byte> bytes = std::as_bytes(std::span(letters));
    return {bytes.begin(), bytes.end()};
}

} // namespace tessel::exporting
