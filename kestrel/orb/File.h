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
inline constexpr Status kInvalidPath = -4;  ///< empty, or not a path here

/// An open file; closes itself. A file made with `Create` is written under a temporary name beside its
/// final one and takes its place in `Write`, so that a failed save leaves the old file whole.
/// Threads: [any-thread].
class KESTREL_API File {
public:
    File() noexcept;
    ~File();
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens for reading. A directory is refused with `kAccessDenied`. Never throws but `std::bad_alloc`.
    [[nodiscard]] static Status OpenForReading(std::u16string_view path, File& file);

    /// Creates, or replaces when it exists. The five modes are the host's (access 3, share 3, disposition
    /// 2, attributes 1, options 0 is what everybody passes); no others are supported.
    [[nodiscard]] static Status Create(std::u16string_view path, std::int32_t access, std::int32_t share,
                                       std::int32_t disposition, std::int32_t attributes, std::int32_t options,
                                       File& file);

    /// Size on disk in bytes.
    [[nodiscard]] Status GetSizeOnDisk(std::uint64_t& size) const noexcept;

    /// Reads up to `buffer.size()` bytes from the current place; `read` receives how many.
    [[nodiscard]] Status Read(std::span<char> buffer, std::uint32_t& read) noexcept;

    /// Writes all of `bytes`, or fails with the old file untouched. Once per created file.
    [[nodiscard]] Status Write(std::span<const char> bytes) noexcept;

    /// Closes; a created file that was never written is gone.
    void Close() noexcept;

private:
    struct State;
    std::unique_ptr<State> mState;
};

struct KESTREL_API PathUtils {
    /// The part after the last separator: "b.tessel" of "a/b.tessel"; the whole text where there is none.
    [[nodiscard]] static std::u16string GetFilePart(std::u16string_view path);
};

} // namespace ORB
