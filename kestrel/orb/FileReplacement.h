/// Putting a new file in the place of an old one: one set of rules for everything that saves.
///
/// - Where the path is a symbolic link, the file that it leads to is written and the link stays.
/// - The new content goes to a temporary file, which takes the place of the old file by a rename. The name
///   stands for the whole old content or the whole new content at any moment, also when the machine stops:
///   the content is on the medium before the rename, the rename before `Commit` returns.
/// - The new file gets the old one's owner, permissions and extended attributes. `Commit` lists what of it
///   could not be kept.
/// - A rename would separate a file from its other hard links, and it is refused where the folder is not
///   writable, where a sticky folder holds another user's file, where a file is a mount point, and where the
///   permissions cannot be set. There the old file is overwritten instead, after a copy of it was put on the
///   medium. If that fails, the old content is written back; if that fails too, `Commit` names the copy.
/// - A file that its permissions protect from writing is refused, although a rename would replace it.
///
/// Paths are the system's own bytes.
#pragma once

#include <kestrel/Export.h>
#include <kestrel/orb/TemporaryFiles.h>

#include <string>

namespace ORB {

/// What stands where a file is to be written.
struct Destination {
    enum class Kind {
        New,    ///< nothing yet
        File,   ///< an ordinary file that may be written to
        Special ///< a device, a pipe or a socket, which cannot be replaced
    };
    Kind kind = Kind::New;
    std::string path; ///< with all symbolic links followed; as it was given for `Special`
};

/// Finds out where `path` leads. Opens nothing, so a pipe does not notice.
/// @return 0, or an error number with `destination` untouched: `EISDIR` for a folder, `EACCES` for a protected
///         file, what the system says of a path that leads nowhere. Threads: [any-thread].
[[nodiscard]] KESTREL_API int FindDestination(const std::string& path, Destination& destination);

/// How a replacement ended.
struct ReplacementOutcome {
    int error = 0; ///< 0, or an error number
    /// After a failure that damaged the old file: a copy of it, otherwise empty.
    std::string copyOfOldFile;
    /// After success: what of the old file could not be kept, such as "owner alice, attribute user.note";
    /// empty where everything was.
    std::string notKept;
};

/// A file on its way to its place. Without `Commit` nothing changes. Threads: one object, one thread at a time.
class KESTREL_API FileReplacement {
public:
    /// Opens a place for the new content, and removes what killed processes left in the folder.
    /// @param destination  As found by `FindDestination`, not `Special`.
    /// @return 0, or an error number.
    [[nodiscard]] int Begin(const Destination& destination);

    /// The same for content that is whole already in the file `whole`, on the same file system. Takes `whole`
    /// over: it is gone when this object is. `Commit` then leaves it to the caller to put file and folder on
    /// the medium, because that is faster for many files at once.
    [[nodiscard]] int BeginWith(const Destination& destination, const std::string& whole);

    /// Where the new content is written and read; -1 before `Begin`.
    [[nodiscard]] int Descriptor() const noexcept { return mNew.Descriptor(); }

    /// Gives the new content its name. Once; the descriptor is closed afterwards.
    [[nodiscard]] ReplacementOutcome Commit();

private:
    [[nodiscard]] int Place(ReplacementOutcome& outcome, bool& mustOverwrite);

    Destination mDestination;
    TemporaryFile mNew;
    bool mIsElsewhere = false; ///< the folder is not writable, so the new content is in another one
    bool mSyncs = true;
};

/// Puts on the medium that `folder` has the entries it has. @return 0, or an error number.
[[nodiscard]] KESTREL_API int SyncFolder(const std::string& folder) noexcept;

/// Puts on the medium everything that was written to the file system of `folder`. @return 0, or an error
/// number.
[[nodiscard]] KESTREL_API int SyncFileSystem(const std::string& folder) noexcept;

/// Why a file cannot be written, for a person: "the disk is full". Threads: [any-thread].
[[nodiscard]] KESTREL_API std::string WriteFailureText(int error);

/// The folder part of a path; "." where it has none.
[[nodiscard]] KESTREL_API std::string FolderOf(const std::string& path);

} // namespace ORB
