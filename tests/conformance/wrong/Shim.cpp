#include "Shim.h"

#include <importabi/ResultCodes.h>

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

std::int32_t RightWithDocument(std::string (*change)(std::string), std::int32_t selector,
                               const ksStdParms* stdParms, void* param1, void* param2)
{
    const ksUTF16* path = nullptr;
    if (selector == 38 && param1 != nullptr) {
        path = static_cast<ksFileAccessRec*>(param1)->path;
    } else if (selector == 39 && param2 != nullptr) {
        path = static_cast<ksOpenRec*>(param2)->path;
    }
    const std::optional<std::string> content = ContentOf(path);
    if (!content) {
        return Right(selector, stdParms, param1, param2);
    }
    // Beside the file, in a folder that the check removes.
    const std::u16string changedPath = std::u16string(path) + u".changed";
    std::ofstream(std::filesystem::path(changedPath), std::ios::binary) << change(*content);
    const auto setPath = [&](const ksUTF16* to) {
        if (selector == 38) {
            static_cast<ksFileAccessRec*>(param1)->path = to;
        } else {
            static_cast<ksOpenRec*>(param2)->path = to;
        }
    };
    setPath(changedPath.c_str());
    const std::int32_t answer = Right(selector, stdParms, param1, param2);
    setPath(path);
    return answer;
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
