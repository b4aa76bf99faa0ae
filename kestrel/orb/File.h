/// The host's file layer: opened files and their status codes.
#pragma once

#include <kestrel/Export.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace ORB {

/// Status of a file operation: 0 or more on success, negative on failure.
using Status = std::int32_t;

inline constexpr Status kDone = 0;
inline constexpr Status kNotFound = -1;     ///< no such file
inline constexpr Status kAccessDenied = -2; ///< not permitted, or a directory
inline constexpr Status kIoError = -3;      ///< the medium failed, or is full
inline constexpr Status kInvalidPath = -4;  ///< empty, or not a path on this system

/// An open file, which closes itself. A file made with `Create` appears under its name in `Write`, by the
/// rules of `FileReplacement`: a failed save leaves the old file whole. `ScopedSaveListener` hears of every
/// save. Threads: [any-thread].
class KESTREL_API File {
public:
    File() noexcept;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens an ordinary file for reading; a directory, a device or a pipe fails with `kAccessDenied`. Waits
    /// for a lease that another process has on the file. Throws only `std::bad_alloc`.
    [[nodiscard]] static Status OpenForReading(std::u16string_view path, File& file);

    /// Prepares to create a file, or to replace it where it exists. The five modes are always access 3, share
    /// 3, disposition 2, attributes 1, options 0; others fail with `kInvalidPath`.
    [[nodiscard]] static Status Create(std::u16string_view path, std::int32_t access, std::int32_t share,
                                       std::int32_t disposition, std::int32_t attributes, std::int32_t options,
                                       File& file);

    /// Size on disk in bytes; of a created file, that of its new content.
    [[nodiscard]] Status GetSizeOnDisk(std::uint64_t& size) const noexcept;

    /// Reads up to `buffer.size()` bytes from the current position; `read` receives their number, 0 at the end.
    [[nodiscard]] Status Read(std::span<char> buffer, std::uint32_t& read) noexcept;

    /// Writes all of `bytes` and gives the file its name, or fails with the old file as it was. Closes the file
    /// either way. Logs what of the old file could not be kept.
    [[nodiscard]] Status Write(std::span<const char> bytes) noexcept;

    /// Closes the file. A created file that was never written does not appear.
    void Close() noexcept;

private:
    struct State;
    std::unique_ptr<State> mState;
};

/// While one lives, a file that its own thread opens for reading several times by one path is opened once: the
/// later ones read the first one's file from its beginning, even where another file has taken the name since.
/// What is read in several steps so belongs together. An inner scope changes nothing. [any-thread]
class KESTREL_API ScopedReading {
public:
    ScopedReading();
    ~ScopedReading();
    ScopedReading(const ScopedReading&) = delete;
    ScopedReading& operator=(const ScopedReading&) = delete;

    struct State;

private:
    std::unique_ptr<State> mState; ///< null for an inner scope
};

struct KESTREL_API PathUtils {
    /// The part after the last separator: "b.txt" of "a/b.txt"; the whole text if it has no separator.
    [[nodiscard]] static std::u16string GetFilePart(std::u16string_view path);
};

} // namespace ORB
