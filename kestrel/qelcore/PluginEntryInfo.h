/// One entry of a statically linked plug-in. Threads: [any-thread].
#pragma once

namespace qelcore::utility {

/// A function and its name; both null in an unused entry. The plug-in owns both for the process's life.
struct PluginEntryInfo {
    void (*function)() = nullptr;
    const char* name = nullptr;
};

} // namespace qelcore::utility
