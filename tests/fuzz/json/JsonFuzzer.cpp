/// Whatever the text, parsing neither crashes nor throws; what can be parsed is printed and read back equal.
#include <kestrel/qelcore/serialization/Json.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

namespace {

using namespace qelcore::serialization;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::string error;
    const Value value = JSONParse(text, &error);
    if (value.IsNothing()) {
        Require(!error.empty(), "a refusal says why");
        Require(error.find('\n') == std::string::npos, "the reason is one line");
        Require(qelcore::text::ToUTF16Strict(error).has_value(), "the reason is UTF-8");
        return 0;
    }
    for (const bool formatted : {false, true}) {
        const std::string printed = GetJSONUTF8String(value, formatted);
        Require(qelcore::text::ToUTF16Strict(printed).has_value(), "printed text is UTF-8");
        const Value again = JSONParse(printed, &error);
        Require(!again.IsNothing(), "printed text can be parsed");
        Require(GetJSONUTF8String(again, formatted) == printed, "printing what was printed changes nothing");
    }
    return 0;
}
