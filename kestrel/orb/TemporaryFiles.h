/// Temporary files and folders. Paths are the system's own bytes.
#pragma once

#include <kestrel/Export.h>

#include <string>

namespace ORB {

/// A temporary file in a folder. On most file systems it has no name, so that the system removes it even if
/// the process is killed. On others it has a hidden name and an advisory lock: `RemoveLeftovers` removes
/// files whose lock is free, because their process has ended. Threads: one object, one thread at a time.
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

    /// Makes an existing file temporary: this object renames or removes it.
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

/// A temporary folder. The destructor removes it with everything in it.
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

/// Removes the temporary files and folders that killed processes left in `folder`: those of the two classes
/// above whose lock is free. On a file system without locks it removes nothing. Threads: [any-thread]. Reads
/// the whole folder.
KESTREL_API void RemoveLeftovers(const std::string& folder) noexcept;

} // namespace ORB
