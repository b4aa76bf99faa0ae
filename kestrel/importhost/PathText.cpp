#include "PathText.h"

#include "HostError.h"

#include <kestrel/qelcore/text/PathText.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <system_error>
#include <utility>

namespace importhost {

using qelcore::text::UTF8Text;

std::string OneLine(std::string_view text)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string line;
    for (const char character : qelcore::text::ToUTF8(qelcore::text::ToUTF16(text))) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '\n') {
            line += "\\n";
        } else if (character == '\t') {
            line += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            line += "\\x";
            line += kDigits[byte >> 4U];
            line += kDigits[byte & 0xFU];
        } else {
            line += character;
        }
    }
    return line;
}

std::string DisplayName(const std::filesystem::path& file)
{
    return OneLine(qelcore::text::UTF8Text(file));
}

std::u16string UTF16Path(const std::filesystem::path& file)
{
    std::error_code ignored;
    const std::filesystem::path absolute = std::filesystem::absolute(file, ignored);
    if (auto path = qelcore::text::ToUTF16Strict(UTF8Text(absolute)); path && !path->empty()) {
        return *std::move(path);
    }
    return qelcore::text::ToUTF16(UTF8Text(file));
}

void RequireUTF8Name(const std::filesystem::path& file)
{
    if (!qelcore::text::ToUTF16Strict(qelcore::text::UTF8Text(file))) {
        throw HostError(DisplayName(file) + ": the file name is not UTF-8, which a clip's name must be");
    }
}

} // namespace importhost
