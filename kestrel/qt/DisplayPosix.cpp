#include "Display.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string_view>

namespace kestrelqt {

namespace {

std::string_view Variable(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): asked once, at start
    return value == nullptr ? std::string_view{} : std::string_view(value);
}

/// Connects to the X server that DISPLAY names, through the library that Qt's own plug-in uses.
bool CanReachX()
{
    void* const library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return false;
    }
    const auto connect = reinterpret_cast<void* (*)(const char*, int*)>(dlsym(library, "xcb_connect"));
    const auto hasError = reinterpret_cast<int (*)(void*)>(dlsym(library, "xcb_connection_has_error"));
    const auto disconnect = reinterpret_cast<void (*)(void*)>(dlsym(library, "xcb_disconnect"));
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr) {
        return false;
    }
    void* const connection = connect(nullptr, nullptr);
    const bool reached = hasError(connection) == 0;
    disconnect(connection);
    return reached;
}

} // namespace

const char* WhyNoWindow()
{
    const std::string_view platform = Variable("QT_QPA_PLATFORM");
    const bool isX = platform.empty() ? Variable("WAYLAND_DISPLAY").empty() : platform.substr(0, 3) == "xcb";
    if (isX && Variable("DISPLAY").empty()) {
        return "there is no display (DISPLAY and WAYLAND_DISPLAY are not set)";
    }
    if (isX && !CanReachX()) {
        return "the display that DISPLAY names cannot be reached";
    }
    return nullptr;
}

} // namespace kestrelqt
