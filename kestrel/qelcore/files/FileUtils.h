/// Questions about paths, which come from the host as UTF-16.
#pragma once

#include <kestrel/Export.h>

#include <string_view>

namespace qelcore::utility {

struct KESTREL_API FileUtils {
    /// True for an existing file or directory, false for an empty path and whenever it cannot be told.
    /// Threads: [thread-safe].
    /// @throws std::bad_alloc  where there is no memory to find out.
    [[nodiscard]] static bool FileOrDirExists(std::u16string_view path);
};

} // namespace qelcore::utility
