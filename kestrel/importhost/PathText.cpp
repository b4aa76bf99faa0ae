#include "PathText.h"

#include "HostError.h"

#include <kestrel/qelcore/text/Unicode.h>

namespace importhost {

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

std::string UTF8Text(const std::filesystem::path& file)
{
    const std::u8string text = file.u8string();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

std::filesystem::path PathOf(std::string_view utf8)
{
    return std::u8string(reinterpret_cast<const char8_t*>(utf8.data()), utf8.size());
}

std::string DisplayName(const std::filesystem::path& file)
{
    return OneLine(UTF8Text(file));
}

void RequireUTF8Name(const std::filesystem::path& file)
{
    if (!qelcore::text::ToUTF16Strict(UTF8Text(file))) {
        throw HostError(DisplayName(file) + ": the file name is not UTF-8, which a clip's name must be");
    }
}

} // namespace importhost
