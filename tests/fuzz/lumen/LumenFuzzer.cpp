/// Whatever the text, parsing a layout gives a layout or an error with a place, and a layout can be built.
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
    if (const std::optional<Layout> layout = Parse({reinterpret_cast<const char*>(data), size})) {
        (void)BuildDialog(layout->root)->AllControls();
    }
    return 0;
}
