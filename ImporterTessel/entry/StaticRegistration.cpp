#include "StaticRegistration.h"

#include "Entries.h"

#include <kestrel/brindle/StaticPlugins.h>

namespace ImporterTessel {

namespace {

/// The host's table holds functions of every signature; the name tells its reader which one it is.
template <class Function>
[[nodiscard]] qelcore::utility::PluginEntryInfo Entry(Function* function, const char* name) noexcept
{
    return {reinterpret_cast<void (*)()>(function), name};
}

} // namespace

void RegisterStatically()
{
    // The seven entries after the first two stay null.
    const BR::StaticPluginEntries entries{Entry(&xImportEntry, kImportEntryName),
                                          Entry(&PluginDataEntryFunction, kPluginDataEntryName)};
    BR::RegisterStaticPlugin(BR::kStaticPluginTypeImporter, "ImporterTessel", entries, __DATE__, __TIME__);
}

} // namespace ImporterTessel
