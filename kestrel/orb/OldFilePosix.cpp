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
#include <utility>

namespace ORB {

using qelcore::files::Descriptor;

namespace {

/// Makes the content of `to` that of `from`, and syncs it.
int CopyContent(int from, int to) noexcept
{
    std::array<char, 65536> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by reading
    off_t position = 0;
    for (;;) {
        const ssize_t got = pread(from, buffer.data(), buffer.size(), position);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return errno;
        }
        if (got == 0) {
            break;
        }
        for (ssize_t done = 0; done < got;) {
            const ssize_t put =
                pwrite(to, buffer.data() + done, static_cast<std::size_t>(got - done), position + done);
            if (put < 0 && errno != EINTR) {
                return errno;
            }
            done += std::max<ssize_t>(put, 0);
        }
        position += got;
    }
    return ftruncate(to, position) == 0 ? SyncDescriptor(to) : errno;
}

off_t SizeOf(int descriptor) noexcept
{
    struct stat status {};
    return fstat(descriptor, &status) == 0 ? status.st_size : 0;
}

/// Makes a synced copy of an old file, with a name that a person recognises: "notes.txt.old-k3v9x0qa".
/// @param name  Receives the copy's name. Only on success.
ReplacementOutcome KeepCopy(int old, const std::string& target, std::string& name)
{
    constexpr std::size_t kLongestStem = 240; // of 255 bytes that a file name may have
    const std::string ending =
        '/' + target.substr(target.rfind('/') + 1).substr(0, kLongestStem) + ".old-XXXXXX";
    ReplacementOutcome outcome;
    for (const std::string& folder : {FolderOf(target), FolderElsewhere()}) {
        std::string pattern = folder + ending;
        const Descriptor copy(mkstemp(pattern.data())); // readable only for the user
        int error = copy.IsOpen() ? CopyContent(old, copy.Get()) : errno;
        if (error == 0) {
            error = SyncFolder(folder);
        }
        if (error == 0) {
            name = std::move(pattern);
            return {};
        }
        if (copy.IsOpen()) {
            unlink(pattern.c_str());
        }
        AddRefusal(outcome, folder, error);
    }
    return outcome;
}

/// Writes the content of the file `copy` into `target`, which is open for writing.
int WriteBack(const std::string& copy, int target) noexcept
{
    const Descriptor kept(open(copy.c_str(), O_RDONLY | O_CLOEXEC));
    return kept.IsOpen() ? CopyContent(kept.Get(), target) : errno;
}

} // namespace

std::string FolderElsewhere()
{
    const char* const named = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe): only read
    return named != nullptr && *named != '\0' ? named : "/var/tmp";
}

void AddRefusal(ReplacementOutcome& outcome, const std::string& folder, int error)
{
    const std::string why = error == ENOENT ? "there is no such folder" : WriteFailureText(error);
    const std::string refusal = '\'' + folder + "' (" + why + ')';
    outcome.error = error;
    if (outcome.foldersTried.empty()) {
        outcome.foldersTried = refusal;
    } else if (outcome.foldersTried != refusal) { // a file in the folder for temporary files
        outcome.foldersTried += " or " + refusal;
    }
}

int SyncDescriptor(int descriptor) noexcept
{
    if (fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == EROFS) {
        return 0;
    }
    return errno;
}

ReplacementOutcome Overwrite(int whole, const std::string& target, std::string& copyOfOld)
{
    ReplacementOutcome outcome;
    // Without O_NONBLOCK, to wait for a lease that another process has on the file.
    const Descriptor file(open(target.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    if (!file.IsOpen()) {
        outcome.error = errno;
        return outcome;
    }
    std::string copy;
    const off_t oldSize = SizeOf(file.Get());
    const off_t newSize = SizeOf(whole);
    outcome = KeepCopy(file.Get(), target, copy);
    if (outcome.error != 0) {
        return outcome;
    }
    if (newSize > oldSize) {
        // Fails on a full disk before the first byte is overwritten.
        outcome.error = posix_fallocate(file.Get(), oldSize, newSize - oldSize);
    }
    if (outcome.error == 0 || outcome.error == EOPNOTSUPP || outcome.error == EINVAL) {
        outcome.error = CopyContent(whole, file.Get());
    }
    if (outcome.error != 0) {
        if (WriteBack(copy, file.Get()) != 0) {
            outcome.copyOfOldFile = copy;
        } else {
            unlink(copy.c_str());
        }
        return outcome;
    }
    copyOfOld = std::move(copy);
    return outcome;
}

int SetAside(const std::string& target, const std::string& aside) noexcept
{
    return link(target.c_str(), aside.c_str()) == 0 || std::rename(target.c_str(), aside.c_str()) == 0 ? 0
                                                                                                       : errno;
}

int MoveBack(const std::string& aside, const std::string& target) noexcept
{
    if (std::rename(aside.c_str(), target.c_str()) != 0) {
        return errno;
    }
    unlink(aside.c_str()); // Renaming one name of a file to another of the same file leaves both.
    return 0;
}

ReplacementOutcome RestoreFile(const std::string& aside, const std::string& target)
{
    ReplacementOutcome outcome;
    outcome.error = MoveBack(aside, target);
    const Descriptor old(outcome.error != 0 ? open(aside.c_str(), O_RDONLY | O_CLOEXEC) : -1);
    if (old.IsOpen() && KeepCopy(old.Get(), target, outcome.copyOfOldFile).error == 0) {
        unlink(aside.c_str());
    }
    return outcome;
}

ReplacementOutcome RestoreContent(const std::string& copy, const std::string& target)
{
    ReplacementOutcome outcome;
    const Descriptor file(open(target.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC));
    outcome.error = file.IsOpen() ? WriteBack(copy, file.Get()) : errno;
    if (outcome.error != 0) {
        outcome.copyOfOldFile = copy;
    } else {
        unlink(copy.c_str());
    }
    return outcome;
}

} // namespace ORB
