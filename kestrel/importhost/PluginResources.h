/// The resources in a plug-in's file, read without running the plug-in.
#pragma once

#include "Importer.h"

#include <filesystem>

namespace importhost {

/// Reads and checks the property list and the two kind resources of a plug-in file.
/// @throws HostError naming the file: not a library, a resource missing, malformed, or not an importer's.
[[nodiscard]] PluginIdentity ReadPluginIdentity(const std::filesystem::path& pluginFile);

} // namespace importhost
