#include "DebugDatabaseFile.h"

#include <cstdlib>

namespace qelcore::debug {
namespace {

/// The variable's value; empty where it is not set.
std::filesystem::path PathInEnvironment(const char* variable)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing here changes the environment.
    const char* const value = std::getenv(variable);
    return value == nullptr ? std::filesystem::path() : std::filesystem::path(value);
}

/// Per the XDG base directory specification, which has relative paths ignored.
std::filesystem::path ConfigurationFolder()
{
    std::filesystem::path folder = PathInEnvironment("XDG_CONFIG_HOME");
    if (folder.is_absolute()) {
        return folder;
    }
    folder = PathInEnvironment("HOME");
    return folder.empty() ? folder : folder / ".config";
}

} // namespace

std::filesystem::path DebugDatabaseFile()
{
    std::filesystem::path file = PathInEnvironment("KESTREL_DEBUG_DATABASE");
    if (!file.empty()) {
        return file;
    }
    file = ConfigurationFolder();
    return file.empty() ? file : file / "kestrel" / "debug-database.json";
}

} // namespace qelcore::debug
