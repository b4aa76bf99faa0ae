/// Where the debug database's file is; the platform's part of the debug database.
#pragma once

#include <filesystem>

namespace qelcore::debug {

/// The file that the environment variable `KESTREL_DEBUG_DATABASE` names, else
/// `kestrel/debug-database.json` in the user's configuration folder; empty where the user has none.
[[nodiscard]] std::filesystem::path DebugDatabaseFile();

} // namespace qelcore::debug
