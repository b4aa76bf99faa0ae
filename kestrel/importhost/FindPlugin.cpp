#include "HostError.h"
#include "Importer.h"
#include "Library.h"
#include "PathText.h"
#include "PluginResources.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

namespace importhost {
namespace {

constexpr char kPlaceVariable[] = "KESTREL_PLUGIN_PATH";
/// The folder of plug-ins in an installed tree, below that of the host's library.
constexpr char kPluginFolder[] = "kestrel";

bool IsImporter(const std::filesystem::path& file)
{
    try {
        static_cast<void>(ReadPluginIdentity(file));
        return true;
    } catch (const HostError&) {
        return false;
    }
}

std::vector<std::filesystem::path> ImportersIn(const std::filesystem::path& folder)
{
    const std::filesystem::path ending = LibraryFileName("x").extension();
    std::vector<std::filesystem::path> importers;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored)) {
        if (entry.path().extension() == ending && entry.is_regular_file(ignored) && IsImporter(entry.path())) {
            importers.push_back(entry.path());
        }
    }
    std::sort(importers.begin(), importers.end());
    return importers;
}

/// The plug-in at a place that a person named.
std::filesystem::path Require(const std::filesystem::path& place, const std::string& saidBy,
                              const std::string& stem)
{
    const std::string expected = " (" + saidBy + " names an importer's file, or the folder that it is in)";
    std::error_code ignored;
    if (!std::filesystem::is_directory(place, ignored)) {
        if (!std::filesystem::exists(place, ignored)) {
            throw HostError(DisplayName(place) + ": no importer plug-in there" + expected);
        }
        return place;
    }
    if (std::filesystem::path file = place / LibraryFileName(stem.c_str());
        std::filesystem::exists(file, ignored)) {
        return file;
    }
    const std::vector<std::filesystem::path> importers = ImportersIn(place);
    if (importers.empty()) {
        throw HostError(DisplayName(place) + ": no importer plug-in there" + expected);
    }
    if (importers.size() > 1) {
        throw HostError(DisplayName(place) + ": several importer plug-ins there, " +
                        DisplayName(importers[0].filename()) + " and " + DisplayName(importers[1].filename()) +
                        " among them; name one's file");
    }
    return importers.front();
}

} // namespace

std::filesystem::path FindPlugin(const PluginSearch& search)
{
    if (!search.place.empty()) {
        return Require(search.place, search.placeSaidBy, search.stem);
    }
    const char* variable = std::getenv(kPlaceVariable); // NOLINT(concurrency-mt-unsafe): only read
    if (variable != nullptr && *variable != '\0') {
        return Require(variable, kPlaceVariable, search.stem);
    }
    // A library folder may hold thousands of libraries, so nothing is searched for here.
    const std::filesystem::path name = LibraryFileName(search.stem.c_str());
    const std::filesystem::path folder = HostLibraryFolder();
    std::error_code ignored;
    if (!folder.empty()) {
        for (const auto& file : {folder / name, folder / kPluginFolder / name}) {
            if (std::filesystem::exists(file, ignored)) {
                return file;
            }
        }
    }
    throw HostError("no importer plug-in: " + DisplayName(name) + " is not in " +
                    DisplayName(folder / kPluginFolder) + "; name it with " +
                    (search.placeSaidBy.empty() ? "" : search.placeSaidBy + " or ") + kPlaceVariable);
}

} // namespace importhost
