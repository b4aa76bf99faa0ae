/// A folder for the files of a check.
#pragma once

#include <filesystem>
#include <string>

namespace conformance {

/// Removed with all that is in it when its owner goes.
class TemporaryFolder {
public:
    /// @throws std::runtime_error where none can be made.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const noexcept { return mPath; }

    /// Writes a file of this name. @return its path
    [[nodiscard]] std::filesystem::path Write(const std::string& name, const std::string& bytes) const;

private:
    std::filesystem::path mPath;
};

} // namespace conformance
