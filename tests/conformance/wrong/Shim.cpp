/// The library's two entries, and the right plug-in behind them.

#include "WrongPlugin.h"

#include <kestrel/importabi/Resources.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

// What the right plug-in's file says about itself without running. The layouts are left out: the right plug-in
// would find these before its own.
#define NAME_KEY "$$$/Corvid/Importers/ImporterTessel/Name=Tessel Test Tool"
#define MATCH_NAME "ZOKE Tessel"
KS_IMPORTER_RESOURCES(NAME_KEY, MATCH_NAME);

namespace wrong {

namespace {

void* RightLibrary()
{
    static void* const library = dlopen(RIGHT_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    return library;
}

const char* ChosenName()
{
    const char* name = std::getenv("WRONG_PLUGIN"); // NOLINT(concurrency-mt-unsafe): only read
    return name != nullptr ? name : "";
}

const WrongPlugin& Chosen()
{
    static const WrongPlugin chosen = [] {
        for (auto* const table : {WrongAnswers, WrongInstances, WrongTexts, WrongFrames, WrongSound}) {
            for (const WrongPlugin& row : table()) {
                if (std::strcmp(row.name, ChosenName()) == 0) {
                    return row;
                }
            }
        }
        std::fprintf(stderr, "WRONG_PLUGIN names no wrong plug-in: '%s'\n", ChosenName());
        std::abort();
    }();
    return chosen;
}

} // namespace

std::int32_t Right(const Request& request)
{
    static const auto entry = reinterpret_cast<ksImportEntry>(dlsym(RightLibrary(), kImportEntryName));
    return entry(request.selector, request.stdParms, request.param1, request.param2);
}

} // namespace wrong

extern "C" std::int32_t xImportEntry(std::int32_t selector, const ksStdParms* stdParms, void* param1,
                                     void* param2)
{
    // The checker also fails the allocations of the wrong plug-in's own code.
    try {
        return wrong::Chosen().serve({selector, stdParms, param1, param2});
    } catch (const std::bad_alloc&) {
        return ksResultOutOfMemory;
    }
}

extern "C" void PluginDataEntryFunction(void* hostContext, ksPluginDataCallback callback)
{
    const bool isMisnamed = std::strcmp(wrong::ChosenName(), "MisnamesItsIdentity") == 0;
    callback(hostContext, isMisnamed ? "Name=Something Else" : NAME_KEY, MATCH_NAME, "Importer", "", 0x494D5054,
             13, 29, 0);
}
