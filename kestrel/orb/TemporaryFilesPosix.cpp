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
constexpr std::size_t kLetterCount = 16; // 82 bits, so that names do not collide
constexpr int kMostAttempts = 100;

/// A new name. It does not contain the target's name, which may have the greatest length already.
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

/// The path by which an open file without a name can be linked.
std::string DescriptorPath(int descriptor)
{
    return "/proc/self/fd/" + std::to_string(descriptor);
}

enum class Claim { Ours, Taken };

/// Locks a new file or folder to show that its process is alive. Without locks in the file system it counts
/// as locked, because no other process can lock it either.
Claim ClaimNew(int descriptor) noexcept
{
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        return errno == EWOULDBLOCK ? Claim::Taken : Claim::Ours;
    }
    // Another process may have locked it first, in `RemoveLeftovers`, and removed its name.
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
        (void)flock(descriptor, LOCK_EX | LOCK_NB); // for the time between linking and renaming
        return descriptor;
    }
    close(descriptor);
#endif
    return -1;
}

/// Removes a file or folder if its lock is free.
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
        // A link cannot replace an old file, so the file is linked under a new name and then renamed.
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
            return 0; // It is usable without a lock; only `RemoveLeftovers` of another process could remove it.
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
        // Collected first, because removing entries while reading a folder may skip others.
        std::vector<std::string> found;
        // NOLINTNEXTLINE(concurrency-mt-unsafe): unsafe only for threads that read the same stream.
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
