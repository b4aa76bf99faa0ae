#include "HostError.h"
#include "Library.h"

#include <dlfcn.h>

#include <string>
#include <system_error>

namespace importhost {

Library::Library(const std::filesystem::path& file)
{
    // An absolute name keeps the loader from searching its own folders for a name without a slash.
    mHandle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (mHandle == nullptr) {
        // The answer is this thread's own in every C library that this code meets.
        const char* reason = dlerror(); // NOLINT(concurrency-mt-unsafe)
        throw HostError(std::string("the plug-in cannot be loaded: ") +
                        (reason != nullptr ? reason : file.c_str()));
    }
}

Library::~Library()
{
    dlclose(mHandle);
}

void* Library::FindSymbol(const char* name) const noexcept
{
    return dlsym(mHandle, name);
}

std::filesystem::path LibraryFileName(const char* stem)
{
    return std::string(stem) + ".so";
}

std::filesystem::path HostLibraryFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&HostLibraryFolder), &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    // "bin/../lib" as the loader found it becomes "lib"; links are followed to where the library really is.
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path() : file.parent_path();
}

} // namespace importhost
