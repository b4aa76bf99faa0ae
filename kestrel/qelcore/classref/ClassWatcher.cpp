#include "ClassWatcher.h"

#include <functional>
#include <map>
#include <mutex>

namespace qelcore::classref {
namespace {

struct Registry {
    std::mutex mutex;
    std::map<std::string, std::size_t, std::less<>> livingObjects;
};

Registry& TheRegistry()
{
    static Registry registry;
    return registry;
}

} // namespace

WatchedClass::WatchedClass(std::string_view className) : mClassName(className)
{
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    ++registry.livingObjects[mClassName];
}

WatchedClass::~WatchedClass()
{
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto entry = registry.livingObjects.find(mClassName);
    if (--entry->second == 0) {
        registry.livingObjects.erase(entry);
    }
}

std::size_t CountWatched(std::string_view className)
{
    Registry& registry = TheRegistry();
    const std::lock_guard lock(registry.mutex);
    const auto entry = registry.livingObjects.find(className);
    return entry == registry.livingObjects.end() ? 0 : entry->second;
}

} // namespace qelcore::classref
