/// Counts the living objects of watched classes, so that a leak in a modal run can be named.
#pragma once

#include <kestrel/Export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace qelcore::classref {

/// Held as a member by objects of a watched class: registers the object's class by name from construction
/// to destruction. Threads: [thread-safe].
class KESTREL_API WatchedClass {
public:
    explicit WatchedClass(std::string_view className);
    ~WatchedClass();
    WatchedClass(const WatchedClass&) = delete;
    WatchedClass& operator=(const WatchedClass&) = delete;

private:
    std::string mClassName;
};

/// How many objects of the class live now. Threads: [thread-safe].
[[nodiscard]] KESTREL_API std::size_t CountWatched(std::string_view className);

} // namespace qelcore::classref
