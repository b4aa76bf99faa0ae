#include "StaticPlugins.h"

#include <algorithm>
#include <mutex>

namespace BR {
namespace {

struct Registry {
    std::mutex mutex;
    std::vector<StaticPlugin> plugins;
};

Registry& TheRegistry()
{
    static Registry registry;
    return registry;
}

std::string TextOf(const char* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

} // namespace

void RegisterStaticPlugin(std::int32_t type, const char* name, const StaticPluginEntries& entries,
                          const char* buildDate, const char* buildTime)
{
    StaticPlugin plugin{type, TextOf(name), entries, TextOf(buildDate), TextOf(buildTime)};
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto same = std::find_if(registry.plugins.begin(), registry.plugins.end(),
                                   [&](const StaticPlugin& other) { return other.name == plugin.name; });
    if (same != registry.plugins.end()) {
        *same = std::move(plugin);
    } else {
        registry.plugins.push_back(std::move(plugin));
    }
}

std::vector<StaticPlugin> RegisteredStaticPlugins()
{
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    return registry.plugins;
}

} // namespace BR
