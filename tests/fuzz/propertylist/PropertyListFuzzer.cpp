/// Property lists from files that anybody may have made: taken with all they must have, or refused in one
/// line.

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PropertyList.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

namespace {

void Require(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const auto list = importhost::ParsePropertyList(std::span(data, size));
        std::size_t bytes = 10;
        for (const importhost::Property& property : list.all) {
            Require(property.data.size() % 4 == 0);
            bytes += 16 + property.data.size();
        }
        Require(bytes == size); // every byte belongs to the header or to one property
        Require(!list.nameKey.empty() && !list.matchName.empty() && !list.category.empty());
    } catch (const importhost::HostError& error) {
        const std::string_view line = error.what();
        Require(!line.empty() && line.find('\n') == std::string_view::npos);
    }
    return 0;
}
