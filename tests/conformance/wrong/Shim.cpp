#include "Shim.h"

#include <dlfcn.h>

namespace {

void* RightLibrary()
{
    static void* const library = dlopen(RIGHT_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    return library;
}

} // namespace

std::int32_t Right(std::int32_t selector, const ksStdParms* stdParms, void* param1, void* param2)
{
    static const auto entry = reinterpret_cast<ksImportEntry>(dlsym(RightLibrary(), kImportEntryName));
    return entry(selector, stdParms, param1, param2);
}

void RightIdentity(void* hostContext, ksPluginDataCallback callback)
{
    static const auto entry = reinterpret_cast<ksPluginDataEntry>(dlsym(RightLibrary(), kPluginDataEntryName));
    entry(hostContext, callback);
}

extern "C" std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                     void* param2)
{
    return Wrong(selector, stdParms, param1, param2);
}

extern "C" void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    WrongIdentity(hostContext, callback);
}
