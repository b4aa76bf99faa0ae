#include "PluginResources.h"

#include "HostError.h"
#include "PathText.h"
#include "PropertyList.h"

#include <kestrel/importabi/Entries.h>
#include <kestrel/qelcore/resources/ResourceFile.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <string>
#include <vector>

namespace importhost {
namespace {

/// A 16-bit zero, then a four-byte code.
using KindResource = std::array<std::uint8_t, 6>;
constexpr KindResource kExpectedKind = {0, 0, 'x', 'i', 'q', 'p'};
constexpr KindResource kExpectedType = {0, 0, 'T', 'P', 'M', 'I'}; // IMPT, byte-reversed

std::vector<std::uint8_t> Resource(const std::filesystem::path& file, const char* section)
{
    std::optional<std::vector<std::uint8_t>> bytes;
    try {
        bytes = qelcore::resources::ReadResource(file, section);
    } catch (const std::exception& error) {
        const std::string name = DisplayName(file) + ": ";
        std::string reason = OneLine(error.what());
        if (reason.starts_with(name)) {
            reason.erase(0, name.size());
        }
        throw HostError(name + "not a plug-in: " + reason);
    }
    if (!bytes) {
        throw HostError(DisplayName(file) + ": not an importer plug-in: it has no resource " + section);
    }
    return *std::move(bytes);
}

void RequireKind(const std::filesystem::path& file, const char* section, const KindResource& expected)
{
    const auto bytes = Resource(file, section);
    if (!std::equal(bytes.begin(), bytes.end(), expected.begin(), expected.end())) {
        throw HostError(DisplayName(file) + ": not an importer plug-in: its resource " + section +
                        " is not an importer's");
    }
}

} // namespace

PluginIdentity ReadPluginIdentity(const std::filesystem::path& pluginFile)
{
    const auto bytes = Resource(pluginFile, kPropertyListSection);
    RequireKind(pluginFile, kImporterKindSection, kExpectedKind);
    RequireKind(pluginFile, kPluginTypeSection, kExpectedType);

    PropertyList list;
    try {
        list = ParsePropertyList(bytes);
    } catch (const HostError& error) {
        throw HostError(DisplayName(pluginFile) + ": " + error.what());
    }
    PluginIdentity identity;
    identity.nameKey = list.nameKey;
    // "$$$/a/b=Text": what stands behind the first equals sign is the text without a translation.
    identity.displayName = list.nameKey.substr(list.nameKey.find('=') + 1);
    identity.matchName = list.matchName;
    identity.kind = list.category;
    identity.kindCode = list.kindCode;
    if (identity.kindCode != FourCharacterCode("IMPT") || identity.kind != "Importer") {
        throw HostError(DisplayName(pluginFile) + ": not an importer plug-in: its property list says \"" +
                        identity.kind + "\"");
    }
    return identity;
}

} // namespace importhost
