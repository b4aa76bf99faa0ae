/// Putting a new file in the place of an old one: one set of rules for everything that saves.
///
/// - A symbolic link is followed: the file that it leads to is replaced, the link stays.
/// - The new content goes to a temporary file, which takes the place of the old file by a rename. At any
///   moment the name has the whole old content or the whole new one, even if the machine stops: the content
///   is synced before the rename, and the folder before `Commit` returns.
/// - The new file gets the old one's owner, permissions and extended attributes. `Commit` lists what could
///   not be kept.
/// - A file is overwritten in place instead where it has several hard links, where its folder is not
///   writable, where it belongs to another user in a sticky folder, where it is a mount point, and where its
///   permissions cannot be given to a new file. First the old content is copied to another file and synced.
///   If overwriting fails, the old content is written back; if that fails too, `Commit` names the copy.
/// - A file without write permission is refused, although a rename could replace it.
///
/// Paths are the system's own bytes.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/orb/TemporaryFiles.h>

#include <string>
#include <utility>

namespace ORB {

/// What exists at the path that a file is to be written to.
struct Destination {
    enum class Kind {
        New,    ///< nothing yet
        File,   ///< an ordinary file that may be written to
        Special ///< a device, a pipe or a socket, which cannot be replaced
    };
    Kind kind = Kind::New;
    std::string path; ///< with all symbolic links followed; as it was given for `Special`
};

/// Finds out what `path` leads to, without opening it.
/// @return 0, or an error number with `destination` untouched: `EISDIR` for a folder, `EACCES` for a file
///         without write permission, or the error of looking the path up. Threads: [any-thread].
[[nodiscard]] KESTREL_API int FindDestination(const std::string& path, Destination& destination);

/// How a replacement ended.
struct ReplacementOutcome {
    int error = 0; ///< 0, or an error number
    /// The file with a copy of the old content, after a failure that damaged the old file; otherwise empty.
    std::string copyOfOldFile;
    /// What of the old file could not be kept, after success: "owner alice, attribute user.note". Empty if
    /// everything was kept.
    std::string notKept;
    /// "'/a' (permission denied) or '/var/tmp' (the disk is full)": the folders in which no temporary file
    /// could be written, each with the reason. Empty unless that was the failure.
    std::string foldersTried;
};

/// New content for a file. Without `Commit` nothing changes. Threads: one object, one thread at a time.
class KESTREL_API FileReplacement {
public:
    /// Opens a temporary file for the new content, after removing those of killed processes from the folder.
    /// @param destination  As found by `FindDestination`, not `Special`.
    /// @return The error, if any, and the folders tried.
    [[nodiscard]] ReplacementOutcome Begin(const Destination& destination);

    /// The same for content that is complete in the file `whole`, on the same file system. This object owns
    /// `whole` from now on, and its destructor removes it. `Commit` then does not sync: syncing many files at
    /// once is faster, and is the caller's task.
    [[nodiscard]] int BeginWith(const Destination& destination, const std::string& whole);

    /// The descriptor for writing and reading the new content; -1 before `Begin`.
    [[nodiscard]] int Descriptor() const noexcept { return mNew.Descriptor(); }

    FileReplacement() noexcept = default;
    /// Removes what `Undo` would have needed.
    ~FileReplacement();
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Lets `Undo` bring the old file back after `Commit`. To be called before it.
    /// @param aside  An unused name on the file system of the destination, for the old file.
    void KeepOldAs(std::string aside) noexcept { mAside = std::move(aside); }

    /// Puts the new content in place. Called once; closes the descriptor.
    [[nodiscard]] ReplacementOutcome Commit();

    /// After `KeepOldAs` and a `Commit` without error: puts the old file back, or removes the new file where
    /// there was none. An old file that was overwritten gets its old content. Without syncing.
    /// @return An error, and then a copy of the old file where there was one.
    [[nodiscard]] ReplacementOutcome Undo();

private:
    /// What `Undo` has to do.
    enum class Replaced {
        Nothing,    ///< not committed, or not to be undone
        NoFile,     ///< remove the new file
        WholeFile,  ///< move the old file back from `mAside`
        ContentOnly ///< write the content of `mAside`, a copy, back into the file
    };

    [[nodiscard]] int Place(ReplacementOutcome& outcome, bool& mustOverwrite);
    [[nodiscard]] int MoveIntoPlace(bool replaces);

    Destination mDestination;
    TemporaryFile mNew;
    bool mIsElsewhere = false; ///< in another folder, because the file's own is not writable
    bool mSyncs = true;
    Replaced mReplaced = Replaced::Nothing;
    std::string mAside; ///< where the old file is kept; empty: nowhere
};

/// Syncs the entries of `folder`, which a rename has changed. @return 0, or an error number.
[[nodiscard]] KESTREL_API int SyncFolder(const std::string& folder) noexcept;

/// Syncs everything on the file system of `folder`. @return 0, or an error number.
[[nodiscard]] KESTREL_API int SyncFileSystem(const std::string& folder) noexcept;

/// An error of writing a file, in words: "the disk is full". Threads: [any-thread].
[[nodiscard]] KESTREL_API std::string WriteFailureText(int error);

/// The error of a replacement in words; where no folder took a temporary file, with the reason of each.
/// Threads: [any-thread].
[[nodiscard]] KESTREL_API std::string WriteFailureText(const ReplacementOutcome& outcome);

/// The folder part of a path; "." where it has none.
[[nodiscard]] KESTREL_API std::string FolderOf(const std::string& path);

} // namespace ORB
