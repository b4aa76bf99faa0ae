/// Files and folders that exist until the work on them is done. Paths are the system's own bytes.
#pragma once

#include <kestrel/Export.h>

#include <string>

namespace ORB {

/// A file under work in some folder. Where the file system can, it has no name, and the system removes it
/// however the process ends. Elsewhere it has a hidden name and an advisory lock, by which `RemoveLeftovers`
/// tells the file of a killed process from one that is still being written.
/// Threads: one object, one thread at a time.
class KESTREL_API TemporaryFile {
public:
    TemporaryFile() noexcept = default;
    /// Closes the file and removes its name.
    ~TemporaryFile();
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile& operator=(TemporaryFile&& other) noexcept;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// Opens an empty file for reading and writing.
    /// @param mode  Permissions, before the user's mask.
    /// @return 0, or an error number with `file` untouched.
    [[nodiscard]] static int Open(const std::string& folder, unsigned mode, TemporaryFile& file);

    /// Takes over a whole file: from now on it is this object's to rename or remove.
    /// @return 0, or an error number with `file` untouched and `name` left alone.
    [[nodiscard]] static int Adopt(const std::string& name, TemporaryFile& file);

    /// The open file; -1 for none.
    [[nodiscard]] int Descriptor() const noexcept { return mDescriptor; }

    /// Renames the file to `target`, on the same file system, replacing what is there.
    /// @return 0, or an error number with the target untouched.
    [[nodiscard]] int MoveTo(const std::string& target);

private:
    void Discard() noexcept;

    int mDescriptor = -1;
    std::string mFolder;
    std::string mName; ///< full path; empty for a file without a name
};

/// A folder under work, removed with all it holds by the destructor.
/// Threads: one object, one thread at a time.
class KESTREL_API TemporaryFolder {
public:
    TemporaryFolder() noexcept = default;
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Makes a folder in `parent`. Once for each object. @return 0, or an error number.
    [[nodiscard]] int Make(const std::string& parent);

    [[nodiscard]] const std::string& Path() const noexcept { return mPath; }

private:
    int mLock = -1;
    std::string mPath;
};

/// Removes what killed processes left in `folder`: temporary files and folders of the two classes above that
/// no process holds a lock on. Others stay, and so do all where the file system has no locks.
/// Threads: [any-thread]. Reads the whole folder.
KESTREL_API void RemoveLeftovers(const std::string& folder) noexcept;

} // namespace ORB
