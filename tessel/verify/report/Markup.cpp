#include "Markup.h"

#include <kestrel/qelcore/text/Unicode.h>

namespace tessel::verify {

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char letter : qelcore::text::Repaired(text)) {
        switch (letter) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        default:
            escaped += static_cast<unsigned char>(letter) < 0x20 && letter != '\n' ? '?' : letter;
        }
    }
    return escaped;
}

} // namespace tessel::verify
