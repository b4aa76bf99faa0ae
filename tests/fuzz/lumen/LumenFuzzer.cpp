/// Whatever the text, parsing a layout gives a layout or an error with a place; a layout can be built, and
/// formatted in either dialect it reads back the same.
#include <kestrel/qelcore/text/Unicode.h>
#include <kestrel/qellumenfactory/Formatter.h>
#include <kestrel/qellumenfactory/LayoutBuilder.h>
#include <kestrel/qellumenfactory/Parser.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace qellumenfactory;

void Require(bool holds, std::string_view claim)
{
    if (!holds) {
        std::cerr << "broken: " << claim << '\n';
        std::abort();
    }
}

std::optional<Layout> Parse(std::string_view text)
{
    try {
        return ParseLayout(text, "fuzz");
    } catch (const LayoutError& error) {
        Require(error.Where().line >= 1 && error.Where().column >= 1, "an error has a place");
        Require(std::string_view(error.what()).starts_with("fuzz:"), "an error names the text");
        return std::nullopt;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::optional<Layout> layout = Parse({reinterpret_cast<const char*>(data), size});
    if (!layout) {
        return 0;
    }
    (void)BuildDialog(layout->root)->AllControls();
    for (const Dialect dialect : {Dialect::Lumen, Dialect::Sable}) {
        const std::string text = FormatLayout(layout->root, dialect);
        Require(qelcore::text::ToUTF16Strict(text).has_value(), "formatted text is UTF-8");
        const std::optional<Layout> again = Parse(text);
        Require(again.has_value(), "formatted text can be parsed");
        Require(again->dialect == dialect, "the dialect shows");
        Require(!FindDifference(layout->root, again->root).has_value(), "formatting changes nothing");
        Require(FormatLayout(again->root, dialect) == text, "formatting what was formatted changes nothing");
    }
    return 0;
}
