/// The two functions that the plug-in exports; see <importabi/Entries.h> for what the host expects of them.
#pragma once

#include <kestrel/importabi/Entries.h>

#include <cstdint>

extern "C" {

[[gnu::visibility("default")]] std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms,
                                                         void* param1, void* param2) noexcept;

/// A null callback is not called.
[[gnu::visibility("default")]] void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback);

} // extern "C"
