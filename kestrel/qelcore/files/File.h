/// A file as a dialog hands it out: a name, nothing opened. Threads: [any-thread].
#pragma once

#include <string>
#include <utility>

namespace qelcore::filesupport {

/// Value type; the path may or may not exist.
class File {
public:
    File() = default;
    explicit File(std::u16string fullPath) : mFullPath(std::move(fullPath)) {}

    /// The absolute path in UTF-16; empty where no file was chosen.
    [[nodiscard]] const std::u16string& FullPath() const noexcept { return mFullPath; }

private:
    std::u16string mFullPath;
};

} // namespace qelcore::filesupport
