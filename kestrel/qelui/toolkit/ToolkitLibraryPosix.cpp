#include "ToolkitLibrary.h"

#include <kestrel/qelui/toolkit/Toolkit.h>

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace qelui {

namespace {

// With the version, so that libraries of one version find each other.
constexpr const char* kLibraryName = "libkestrelqt.so." KESTREL_SOVERSION;

bool IsSet(const char* variable)
{
    const char* const value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe): see UserInterface.cpp
    return value != nullptr && *value != '\0';
}

/// In the folder of this library, where both are built and installed.
std::filesystem::path LibraryFile()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&IsDisplayPresent), &info) == 0 || info.dli_fname == nullptr) {
        return kLibraryName;
    }
    return std::filesystem::path(info.dli_fname).parent_path() / kLibraryName;
}

std::string LoaderError()
{
    const char* const text = dlerror(); // NOLINT(concurrency-mt-unsafe): ui thread only
    return text == nullptr ? "unknown" : text;
}

} // namespace

bool IsDisplayPresent()
{
    return IsSet("WAYLAND_DISPLAY") || IsSet("DISPLAY");
}

bool IsQtToolkitPresent()
{
    std::error_code error;
    return std::filesystem::exists(LibraryFile(), error);
}

Toolkit* LoadQtToolkit(std::string& whyNot)
{
    // Never unloaded: window systems keep pointers into their code until the process ends.
    void* const library = dlopen(LibraryFile().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        whyNot = "the Qt toolkit cannot be loaded (" + LoaderError() + ")";
        return nullptr;
    }
    const auto entry = reinterpret_cast<ToolkitEntry>(dlsym(library, kToolkitEntryName));
    if (entry == nullptr) {
        whyNot = std::string(kLibraryName) + " lacks its entry " + kToolkitEntryName;
        return nullptr;
    }
    const char* reason = nullptr;
    Toolkit* const toolkit = entry(&reason);
    if (toolkit == nullptr) {
        whyNot = reason == nullptr ? "the Qt toolkit refused to start" : reason;
    }
    return toolkit;
}

} // namespace qelui
