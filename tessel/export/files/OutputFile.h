/// A file in the making, which takes its name only when it is whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace tessel::exporting {

/// Bytes on their way to a file. Until `Commit`, nothing of it can be seen under the final name, and what an
/// earlier file of that name holds stays whole; without `Commit` nothing is left. The new file keeps the old
/// one's permissions; where the name is a link, its target is what is written. Devices and pipes, which cannot
/// be replaced, are written to directly. Threads: one object, one thread at a time.
class OutputFile {
public:
    /// Starts a file that will be `path`.
    /// @throws ExportError  naming the path, where it cannot be.
    explicit OutputFile(const std::filesystem::path& path);

    struct StandardOutput {};
    explicit OutputFile(StandardOutput);

    /// Discards what was not committed.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    OutputFile(OutputFile&&) noexcept;
    OutputFile& operator=(OutputFile&&) noexcept;

    /// @throws ExportError  disk full, pipe closed, ...
    /// @throws Interrupted  told to stop while waiting for a pipe's reader
    void Write(std::span<const std::byte> bytes);

    [[nodiscard]] bool CanSeek() const noexcept;
    /// @throws ExportError
    void SeekTo(std::int64_t position);
    [[nodiscard]] std::int64_t Position() const noexcept;
    [[nodiscard]] std::int64_t Size() const noexcept;

    /// The file is whole: gives it its name. @throws ExportError
    void Commit();

private:
    struct State;
    std::unique_ptr<State> mState;
};

/// @throws ExportError  naming `path`, where `Replace` would fail: it is a folder, a device, protected, ...
void RequireReplaceable(const std::filesystem::path& path);

/// Moves a file that is whole to `path`, on the same file system, as `OutputFile::Commit` does.
/// @throws ExportError  naming `path`
void Replace(const std::filesystem::path& path, const std::filesystem::path& whole);

/// A folder for the files of a sequence in the making, beside where they go. Removed with all it holds by the
/// destructor.
class TemporaryFolder {
public:
    /// @throws ExportError  where `parent` is not there or not writable.
    explicit TemporaryFolder(const std::filesystem::path& parent);
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const noexcept { return mPath; }

private:
    std::filesystem::path mPath;
};

/// Whether standard error is a terminal, where a progress bar has a place.
[[nodiscard]] bool StandardErrorIsTerminal() noexcept;

} // namespace tessel::exporting
