#include "FileAttributesPosix.h"
#include "FileReplacement.h"
#include "OldFilePosix.h"

#include <kestrel/qelcore/files/DescriptorPosix.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <system_error>
#include <utility>

namespace ORB {

using qelcore::files::Descriptor;

namespace {

struct Freer {
    void operator()(char* text) const noexcept
    {
        std::free(text); // NOLINT(cppcoreguidelines-no-malloc): realpath's result is the C library's.
    }
};

/// The file that `path` stands for once all symbolic links are followed, also when it does not exist yet.
int ResolveTarget(const std::string& path, std::string& target)
{
    target = path;
    constexpr int kMostLinks = 40; // as the system's own limit
    for (int links = 0; links < kMostLinks; ++links) {
        if (const std::unique_ptr<char, Freer> resolved{realpath(target.c_str(), nullptr)}) {
            target = resolved.get();
            return 0;
        }
        if (errno != ENOENT) {
            return errno;
        }
        std::array<char, 4096> link{};
        const ssize_t length = readlink(target.c_str(), link.data(), link.size());
        if (length < 0) {
            return errno == ENOENT || errno == EINVAL ? 0 : errno; // No link: the file to be made.
        }
        if (static_cast<std::size_t>(length) == link.size()) {
            return ENAMETOOLONG;
        }
        const std::string_view next(link.data(), static_cast<std::size_t>(length));
        const std::size_t folderLength = next.substr(0, 1) == "/" ? 0 : target.rfind('/') + 1;
        target.replace(folderLength, std::string::npos, next);
    }
    return ELOOP;
}

/// Whether an error means that new files are not permitted, rather than a full or broken disk.
bool IsRefusal(int error) noexcept
{
    return error == EACCES || error == EPERM || error == EROFS;
}

/// Whether a rename failed for a reason that does not keep the file from being overwritten: a sticky folder,
/// a mount point, changed permissions of the folder.
bool IsRenameRefusal(int error) noexcept
{
    return IsRefusal(error) || error == EBUSY || error == EXDEV;
}

} // namespace

int FindDestination(const std::string& path, Destination& destination)
{
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        return errno;
    }
    if (exists && S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    if (exists && !S_ISREG(status.st_mode)) {
        // The path as given: that of a shell's pipe, /dev/fd/63, resolves to no real name.
        destination = {Destination::Kind::Special, path};
        return 0;
    }
    if (exists && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
        return errno;
    }
    std::string target;
    if (const int error = ResolveTarget(path, target)) {
        return error;
    }
    destination = {exists ? Destination::Kind::File : Destination::Kind::New, std::move(target)};
    return 0;
}

FileReplacement::~FileReplacement()
{
    if (mReplaced == Replaced::WholeFile || mReplaced == Replaced::ContentOnly) {
        unlink(mAside.c_str());
    }
}

ReplacementOutcome FileReplacement::Begin(const Destination& destination)
{
    const bool isNew = destination.kind == Destination::Kind::New;
    const std::string folder = FolderOf(destination.path);
    RemoveLeftovers(folder);
    // Only the user may read the new content until it has the old file's permissions.
    const unsigned mode = isNew ? 0666U : 0600U;
    TemporaryFile opened;
    ReplacementOutcome outcome;
    outcome.error = TemporaryFile::Open(folder, mode, opened);
    const bool isElsewhere = !isNew && IsRefusal(outcome.error);
    if (isElsewhere) {
        const std::string elsewhere = FolderElsewhere();
        AddRefusal(outcome, folder, outcome.error);
        const int error = TemporaryFile::Open(elsewhere, mode, opened);
        if (error == 0) {
            outcome = {};
        } else {
            AddRefusal(outcome, elsewhere, error);
        }
    }
    if (outcome.error != 0) {
        return outcome;
    }
    mDestination = destination;
    mNew = std::move(opened);
    mIsElsewhere = isElsewhere;
    return outcome;
}

int FileReplacement::BeginWith(const Destination& destination, const std::string& whole)
{
    if (const int error = TemporaryFile::Adopt(whole, mNew)) {
        return error;
    }
    mDestination = destination;
    mSyncs = false;
    return 0;
}

int FileReplacement::Place(ReplacementOutcome& outcome, bool& mustOverwrite)
{
    const std::string& target = mDestination.path;
    struct stat old {};
    const bool replaces = mDestination.kind == Destination::Kind::File && stat(target.c_str(), &old) == 0;
    mustOverwrite = replaces && (mIsElsewhere || old.st_nlink > 1);
    if (mustOverwrite) {
        return 0;
    }
    if (replaces && CopyAttributes(old, target, Descriptor(), outcome.notKept) != 0) {
        mustOverwrite = true;
        return 0;
    }
    if (const int error = mSyncs ? SyncDescriptor(Descriptor()) : 0) {
        return error;
    }
    if (const int error = MoveIntoPlace(replaces)) {
        mustOverwrite = replaces && IsRenameRefusal(error);
        return mustOverwrite ? 0 : error;
    }
    return mSyncs ? SyncFolder(FolderOf(target)) : 0;
}

int FileReplacement::MoveIntoPlace(bool replaces)
{
    const std::string& target = mDestination.path;
    if (mAside.empty()) {
        return mNew.MoveTo(target);
    }
    if (const int error = replaces ? SetAside(target, mAside) : 0) {
        return error;
    }
    const int error = mNew.MoveTo(target);
    if (error == 0) {
        mReplaced = replaces ? Replaced::WholeFile : Replaced::NoFile;
    } else if (replaces) {
        static_cast<void>(MoveBack(mAside, target)); // It was moved a moment ago.
    }
    return error;
}

ReplacementOutcome FileReplacement::Commit()
{
    ReplacementOutcome outcome;
    bool mustOverwrite = false;
    outcome.error = Place(outcome, mustOverwrite);
    if (mustOverwrite) {
        std::string copy;
        outcome = Overwrite(Descriptor(), mDestination.path, copy);
        if (!copy.empty() && mAside.empty()) {
            unlink(copy.c_str());
        } else if (!copy.empty()) {
            mAside = std::move(copy);
            mReplaced = Replaced::ContentOnly;
        }
    }
    mNew = TemporaryFile();
    return outcome;
}

ReplacementOutcome FileReplacement::Undo()
{
    ReplacementOutcome outcome;
    const std::string& target = mDestination.path;
    switch (std::exchange(mReplaced, Replaced::Nothing)) {
    case Replaced::Nothing:
        break;
    case Replaced::NoFile:
        outcome.error = unlink(target.c_str()) == 0 || errno == ENOENT ? 0 : errno;
        break;
    case Replaced::WholeFile:
        return RestoreFile(mAside, target);
    case Replaced::ContentOnly:
        return RestoreContent(mAside, target);
    }
    return outcome;
}

int SyncFolder(const std::string& folder) noexcept
{
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // A folder without read permission cannot be opened, so it cannot be synced.
    return descriptor.IsOpen() ? SyncDescriptor(descriptor.Get()) : (errno == EACCES ? 0 : errno);
}

int SyncFileSystem(const std::string& folder) noexcept
{
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!descriptor.IsOpen()) {
        return errno == EACCES ? 0 : errno;
    }
#ifdef __linux__
    return syncfs(descriptor.Get()) == 0 ? 0 : errno;
#else
    sync();
    return 0;
#endif
}

std::string WriteFailureText(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return "its folder does not exist";
    case EACCES:
    case EPERM:
        return "permission denied";
    case EROFS:
        return "the file system is read-only";
    case EISDIR:
        return "it is a folder";
    case ENAMETOOLONG:
        return "the name is too long";
    case ELOOP:
        return "its symbolic links lead in a circle";
    case ENOSPC:
        return "the disk is full";
    case EDQUOT:
        return "the disk quota is used up";
    case EFBIG:
        return "it is larger than files may be here";
    case EPIPE:
        return "its reader has gone";
    case EIO:
        return "the disk reports an error";
    default:
        return std::generic_category().message(error);
    }
}

std::string WriteFailureText(const ReplacementOutcome& outcome)
{
    return outcome.foldersTried.empty() ? WriteFailureText(outcome.error)
                                        : "no temporary file can be written in " + outcome.foldersTried;
}

std::string FolderOf(const std::string& path)
{
    const std::size_t end = path.rfind('/');
    return end == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(end, 1));
}

} // namespace ORB
