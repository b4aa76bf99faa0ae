#include "HostError.h"
#include "Importer.h"
#include "Library.h"
#include "PathText.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace importhost {
namespace {

constexpr char kPluginStem[] = "ImporterTessel";

/// `place` is the plug-in's file or the folder that holds it; empty where there is no such file.
std::filesystem::path FileAt(const std::filesystem::path& place)
{
    std::error_code ignored;
    std::filesystem::path file = place;
    if (std::filesystem::is_directory(file, ignored)) {
        file /= LibraryFileName(kPluginStem);
    }
    return std::filesystem::exists(file, ignored) ? file : std::filesystem::path();
}

std::filesystem::path Require(const std::filesystem::path& place, const char* saidBy)
{
    std::filesystem::path file = FileAt(place);
    if (file.empty()) {
        throw HostError(DisplayName(place) + ": no importer plug-in there (" + saidBy +
                        " names its file, or the folder of " + LibraryFileName(kPluginStem).string() + ")");
    }
    return file;
}

} // namespace

std::filesystem::path FindPlugin(const std::filesystem::path& chosen)
{
    if (!chosen.empty()) {
        return Require(chosen, "--plugin");
    }
    const char* variable = std::getenv("KESTREL_PLUGIN_PATH"); // NOLINT(concurrency-mt-unsafe): only read
    if (variable != nullptr && *variable != '\0') {
        return Require(variable, "KESTREL_PLUGIN_PATH");
    }
    const std::filesystem::path folder = HostLibraryFolder();
    std::filesystem::path file = folder.empty() ? folder : FileAt(folder);
    if (file.empty()) {
        throw HostError("no importer plug-in: " + LibraryFileName(kPluginStem).string() + " is not in " +
                        DisplayName(folder) + "; name it with --plugin or KESTREL_PLUGIN_PATH");
    }
    return file;
}

} // namespace importhost
