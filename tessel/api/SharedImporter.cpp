#include "SharedImporter.h"

#include <tessel/document/OpenClip.h>

#include <map>
#include <mutex>

namespace tessel::api {

std::shared_ptr<const importhost::Importer> ShareImporter(const std::filesystem::path& plugin)
{
    using importhost::Importer;
    static std::mutex mutex;
    static std::map<std::filesystem::path, std::weak_ptr<const Importer>> loaded;

    const std::filesystem::path file = importhost::FindPlugin(
        {.place = plugin, .placeSaidBy = "tessel_open_options.plugin", .stem = document::kPluginStem});
    const std::lock_guard lock(mutex);
    std::weak_ptr<const Importer>& known = loaded[std::filesystem::weakly_canonical(file)];
    std::shared_ptr<const Importer> importer = known.lock();
    if (!importer) {
        // Whoever calls this wants test signals, so a plug-in for tests may load.
        importer = Importer::Load(file, importhost::TestingPlugins::Allowed);
        known = importer;
    }
    return importer;
}

} // namespace tessel::api
