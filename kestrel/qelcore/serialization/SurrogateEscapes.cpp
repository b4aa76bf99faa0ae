#include "SurrogateEscapes.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <optional>
#include <system_error>

namespace qelcore::serialization {
namespace {

constexpr std::size_t kEscapeLength = 6; // \u and four digits

/// The code unit whose escape stands at `place`; nothing where no escape stands there.
std::optional<unsigned> EscapeAt(std::string_view text, std::size_t place)
{
    const std::string_view escape = text.substr(std::min(place, text.size()), kEscapeLength);
    if (escape.size() != kEscapeLength || escape[0] != '\\' || escape[1] != 'u') {
        return std::nullopt;
    }
    unsigned unit = 0;
    const char* const end = escape.data() + escape.size();
    const std::from_chars_result parsed = std::from_chars(escape.data() + 2, end, unit, 16);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return std::nullopt;
    }
    return unit;
}

bool IsIn(std::optional<unsigned> unit, unsigned first, unsigned last)
{
    return unit && *unit >= first && *unit <= last;
}

} // namespace

std::string_view WithoutUnpairedSurrogates(std::string_view text, std::string& storage)
{
    bool isCopied = false;
    // A backslash outside a string is malformed anyway, so strings need not be found.
    std::size_t place = text.find('\\');
    while (place != std::string_view::npos) {
        const std::optional<unsigned> unit = EscapeAt(text, place);
        std::size_t length = 2; // any other escape; of `\\`, the second backslash begins none
        if (IsIn(unit, 0xD800, 0xDBFF) && IsIn(EscapeAt(text, place + kEscapeLength), 0xDC00, 0xDFFF)) {
            length = 2 * kEscapeLength;
        } else if (IsIn(unit, 0xD800, 0xDFFF)) {
            if (!isCopied) {
                storage = text;
                isCopied = true;
            }
            storage.replace(place, kEscapeLength, "\\uFFFD");
            length = kEscapeLength;
        }
        place = text.find('\\', place + length);
    }
    return isCopied ? std::string_view(storage) : text;
}

} // namespace qelcore::serialization
