/// Plug-ins that are linked into a program instead of being loaded from a file.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/qelcore/PluginEntryInfo.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace BR {

inline constexpr std::size_t kStaticPluginEntryCount = 9;
using StaticPluginEntries = std::array<qelcore::utility::PluginEntryInfo, kStaticPluginEntryCount>;

/// Plug-in type of importers.
inline constexpr std::int32_t kStaticPluginTypeImporter = 6;

struct StaticPlugin {
    std::int32_t type = 0;
    std::string name;
    StaticPluginEntries entries{};
    std::string buildDate; ///< "Feb  6 2026"
    std::string buildTime; ///< "15:23:34"
};

/// Hands a plug-in's entry points to the framework; one of the same name is replaced. [thread-safe]
KESTREL_API void RegisterStaticPlugin(std::int32_t type, const char* name, const StaticPluginEntries& entries,
                                      const char* buildDate, const char* buildTime);

/// What has been registered so far, in order. [thread-safe]
[[nodiscard]] KESTREL_API std::vector<StaticPlugin> RegisteredStaticPlugins();

} // namespace BR
