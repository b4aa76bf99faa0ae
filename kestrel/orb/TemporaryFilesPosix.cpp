#include "TemporaryFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace ORB {
namespace {

constexpr std::string_view kNameBegin = ".kestrel-";
constexpr std::string_view kNameEnd = ".tmp";
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t kLetterCount = 16; // 82 bits: no two processes draw the same name
constexpr int kMostAttempts = 100;

/// A name that nobody else uses. It holds nothing of the target's name, which may have full length already.
std::string NewName(const std::string& folder)
{
    std::random_device random;
    std::string name = folder + '/';
    name += kNameBegin;
    for (std::size_t i = 0; i < kLetterCount; ++i) {
        name += kLetters[random() % kLetters.size()];
    }
    return name += kNameEnd;
}

bool IsTemporaryName(std::string_view name) noexcept
{
    return name.size() == kNameBegin.size() + kLetterCount + kNameEnd.size() && name.starts_with(kNameBegin) &&
           name.ends_with(kNameEnd) &&
           name.substr(kNameBegin.size(), kLetterCount).find_first_not_of(kLetters) == std::string_view::npos;
}

/// The path under which a file without a name can be given one.
std::string DescriptorPath(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

enum class Claim { Ours, Taken };

/// Locks what `descriptor` is open on, as a sign of life. A file system without locks counts as claimed:
/// nobody else can lock there either.
Claim ClaimNew(int descriptor) noexcept
{
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Claim::Taken : Claim::Ours;
    }
    // `RemoveLeftovers` of another process may have been faster with the lock and has removed the name.
    struct stat status {};
    return fstat(descriptor, &status) == 0 && status.st_nlink == 0 ? Claim::Taken : Claim::Ours;
}

/// @return -1 where the file system or the kernel has no files without a name.
int OpenNameless([[maybe_unused]] const std::string& folder, [[maybe_unused]] unsigned mode)
{
#ifdef O_TMPFILE
    const int descriptor = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
    if (descriptor < 0) {
        return -1;
    }
    if (access(DescriptorPath(descriptor).c_str(), F_OK) == 0) {
        (void)flock(descriptor, LOCK_EX | LOCK_NB); // for the moment in which it has a temporary name
        return descriptor;
    }
    close(descriptor);
#endif
    return -1;
}

/// Removes one file or folder whose lock nobody holds.
void RemoveIfAbandoned(const std::string& path)
{
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !(S_ISREG(status.st_mode) || S_ISDIR(status.st_mode))) {
        return;
    }
    const bool isFolder = S_ISDIR(status.st_mode);
    const int descriptor =
        open(path.c_str(), (isFolder ? O_RDONLY | O_DIRECTORY : O_RDWR | O_NONBLOCK) | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    close(descriptor);
}

struct FolderCloser {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

} // namespace

TemporaryFile::~TemporaryFile()
{
    Discard();
}

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : mDescriptor(std::exchange(other.mDescriptor, -1)), mFolder(std::move(other.mFolder)),
      mName(std::exchange(other.mName, {}))
{
}

TemporaryFile& TemporaryFile::operator=(TemporaryFile&& other) noexcept
{
    if (this != &other) {
        Discard();
        mDescriptor = std::exchange(other.mDescriptor, -1);
        mFolder = std::move(other.mFolder);
        mName = std::exchange(other.mName, {});
    }
    return *this;
}

void TemporaryFile::Discard() noexcept
{
    if (!mName.empty()) {
        unlink(mName.c_str());
        mName.clear();
    }
    if (mDescriptor >= 0) {
        close(std::exchange(mDescriptor, -1));
    }
}

int TemporaryFile::Open(const std::string& folder, unsigned mode, TemporaryFile& file)
{
    TemporaryFile opened;
    opened.mFolder = folder;
    opened.mDescriptor = OpenNameless(folder, mode);
    for (int attempt = 0; opened.mDescriptor < 0; ++attempt) {
        std::string name = NewName(folder);
        const int descriptor = open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (descriptor < 0 && ((errno != EEXIST && errno != EINTR) || attempt == kMostAttempts)) {
            return errno;
        }
        if (descriptor < 0) {
            continue;
        }
        opened.mDescriptor = descriptor;
        opened.mName = std::move(name);
        if (attempt < kMostAttempts && ClaimNew(descriptor) == Claim::Taken) {
            opened.Discard();
        }
    }
    file = std::move(opened);
    return 0;
}

int TemporaryFile::Adopt(const std::string& name, TemporaryFile& file)
{
    const int descriptor = open(name.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        return errno;
    }
    TemporaryFile adopted;
    adopted.mDescriptor = descriptor;
    adopted.mName = name;
    file = std::move(adopted);
    return 0;
}

int TemporaryFile::MoveTo(const std::string& target)
{
    if (mName.empty()) {
        // A file without a name can only be linked under a new name; the rename then replaces an old file at
        // once.
        std::string name = NewName(mFolder);
        if (linkat(AT_FDCWD, DescriptorPath(mDescriptor).c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) !=
            0) {
            return errno;
        }
        mName = std::move(name);
    }
    if (std::rename(mName.c_str(), target.c_str()) != 0) {
        return errno;
    }
    mName.clear();
    return 0;
}

TemporaryFolder::~TemporaryFolder()
{
    if (!mPath.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    if (mLock >= 0) {
        close(mLock);
    }
}

int TemporaryFolder::Make(const std::string& parent)
{
    for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
        std::string path = NewName(parent);
        if (mkdir(path.c_str(), 0777) != 0) {
            if (errno == EEXIST) {
                continue;
            }
            return errno;
        }
        mPath = std::move(path);
        mLock = open(mPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (mLock >= 0 && ClaimNew(mLock) == Claim::Ours) {
            return 0;
        }
        if (mLock < 0 && errno != ENOENT) {
            return 0; // Without a lock it is merely unprotected from others that clean up.
        }
        if (mLock >= 0) {
            close(std::exchange(mLock, -1));
        }
        mPath.clear();
    }
    return EEXIST;
}

void RemoveLeftovers(const std::string& folder) noexcept
{
    try {
        const std::unique_ptr<DIR, FolderCloser> entries(opendir(folder.c_str()));
        if (entries == nullptr) {
            return;
        }
        // Found first: removing while reading may skip entries.
        std::vector<std::string> found;
        while (const dirent* const entry = readdir(entries.get())) {
            if (IsTemporaryName(entry->d_name)) {
                found.push_back(folder + '/' + entry->d_name);
            }
        }
        std::for_each(found.begin(), found.end(), RemoveIfAbandoned);
    } catch (const std::exception&) {
        return; // Out of memory: the next save cleans up.
    }
}

} // namespace ORB
