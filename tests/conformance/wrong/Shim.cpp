#include "Shim.h"

#include <kestrel/importabi/ResultCodes.h>

#include <dlfcn.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

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

std::optional<std::string> ContentOf(const ksUTF16* path)
{
    std::ifstream stream;
    if (path != nullptr && std::filesystem::is_regular_file(path)) {
        stream.open(std::filesystem::path(path), std::ios::binary);
    }
    if (!stream.is_open()) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

extern "C" std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                     void* param2)
{
    // The checker also fails the allocations of the wrong plug-in's own code.
    try {
        return Wrong(selector, stdParms, param1, param2);
    } catch (const std::bad_alloc&) {
        return ksResultOutOfMemory;
    }
}

extern "C" void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    WrongIdentity(hostContext, callback);
}
