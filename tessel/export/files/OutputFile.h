/// A file in the making, which takes its name only when it is whole.
#pragma once

#include <kestrel/orb/TemporaryFiles.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace tessel::exporting {

/// Bytes on their way to a file. Until `Commit` nothing of them can be seen under the final name, and an
/// earlier file of that name stays whole; without `Commit` nothing is left. An earlier file is replaced by the
/// rules of `ORB::FileReplacement`. Devices and pipes, which cannot be replaced, are written to directly.
/// Threads: one object, one thread at a time.
class OutputFile {
public:
    /// Starts a file that will be `path`.
    /// @throws ExportError  naming the path, where it cannot be.
    explicit OutputFile(const std::filesystem::path& path);

    struct StandardOutput {};
    explicit OutputFile(StandardOutput);

    /// A file in a folder of this process alone, written directly.
    struct New {
        std::filesystem::path path;
        std::filesystem::path goal; ///< what the file will be in the end: messages name it
    };
    /// @throws ExportError  naming the goal, where the file cannot be made or exists already.
    explicit OutputFile(const New& file);

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

    /// The file is whole: gives it its name. What of an earlier file could not be kept is logged.
    /// @throws ExportError
    void Commit();

private:
    struct State;
    std::unique_ptr<State> mState;
};

/// @throws ExportError  naming `path`, where `JointReplacement::Replace` would fail: it is a folder, a device,
/// protected, ...
void RequireReplaceable(const std::filesystem::path& path);

/// Files that take their names together. Until `Accept`, the files that they replaced are kept, and the
/// destructor puts them back. Threads: one object, one thread at a time.
class JointReplacement {
public:
    /// @param aside   a folder to be made for the replaced files, on the file system of the new ones
    /// @param folder  where the files go: the message names it
    /// @throws ExportError  where `aside` cannot be made
    JointReplacement(std::filesystem::path aside, const std::filesystem::path& folder);
    /// Unless accepted, puts the old files back and removes new ones that replaced none. A file that cannot be
    /// restored is logged.
    ~JointReplacement();
    JointReplacement(const JointReplacement&) = delete;
    JointReplacement& operator=(const JointReplacement&) = delete;

    /// Moves a file that is whole to `path`, on the same file system, as `OutputFile::Commit` does, but without
    /// waiting for the medium. `whole` is gone afterwards, also after a failure.
    /// @throws ExportError  naming `path`
    void Replace(const std::filesystem::path& path, const std::filesystem::path& whole);

    void Accept() noexcept;

private:
    struct Replaced;

    std::filesystem::path mAside;
    std::deque<Replaced> mFiles;
};

/// Waits until everything written to the file system of `folder` (empty: the current one) is on its medium: for
/// many files at once.
/// @throws ExportError  naming the folder
void WaitForMedium(const std::filesystem::path& folder);

/// Waits until the names that files have in `folder` (empty: the current one) are on the medium.
/// @throws ExportError  naming the folder
void WaitForNames(const std::filesystem::path& folder);

/// A folder for the files of a sequence in the making, beside where they go. Removed with all it holds by the
/// destructor; after a killed process by the next one that writes into `parent`.
class TemporaryFolder {
public:
    /// @throws ExportError  where `parent` is not there or not writable.
    explicit TemporaryFolder(const std::filesystem::path& parent);

    [[nodiscard]] std::filesystem::path Path() const { return mFolder.Path(); }

private:
    ORB::TemporaryFolder mFolder;
};

/// Whether standard error is a terminal, where a progress bar has a place.
[[nodiscard]] bool StandardErrorIsTerminal() noexcept;
[[nodiscard]] bool StandardOutputIsTerminal() noexcept;

} // namespace tessel::exporting
