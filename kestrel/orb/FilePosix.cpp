#include "File.h"
#include "FileReplacement.h"

#include <kestrel/qelcore/text/Unicode.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <optional>
#include <utility>

namespace ORB {
namespace {

Status StatusOfErrno(int error) noexcept
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
        return kNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
        return kAccessDenied;
    case ENAMETOOLONG:
    case ELOOP:
    case EINVAL:
        return kInvalidPath;
    default:
        return kIoError;
    }
}

/// The path in the system's bytes; nothing where it cannot name a file.
std::optional<std::string> SystemPath(std::u16string_view path)
{
    if (path.empty() || path.find(u'\0') != std::u16string_view::npos) {
        return std::nullopt;
    }
    return qelcore::text::ToUTF8Strict(path);
}

int OpenRestarted(const char* path, int flags, mode_t mode) noexcept
{
    int descriptor = -1;
    do {
        descriptor = open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

} // namespace

struct File::State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ~State()
    {
        if (descriptor >= 0) {
            close(descriptor);
        }
        if (!temporary.empty()) {
            unlink(temporary.c_str());
        }
    }

    int descriptor = -1;
    std::string target;    ///< a created file's final name
    std::string temporary; ///< its name until it has been written; empty afterwards
};

File::File() noexcept = default;
File::~File() = default;
File::File(File&& other) noexcept = default;
File& File::operator=(File&& other) noexcept = default;

Status File::OpenForReading(std::u16string_view path, File& file)
{
    const std::optional<std::string> systemPath = SystemPath(path);
    if (!systemPath) {
        return kInvalidPath;
    }
    auto state = std::make_unique<State>();
    // Without blocking, because opening a pipe would wait for its writer.
    state->descriptor = OpenRestarted(systemPath->c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY, 0);
    if (state->descriptor < 0) {
        return StatusOfErrno(errno);
    }
    struct stat status {};
    if (fstat(state->descriptor, &status) != 0) {
        return StatusOfErrno(errno);
    }
    // A pipe or a device has no size that one read could get.
    if (!S_ISREG(status.st_mode)) {
        return kAccessDenied;
    }
    file.mState = std::move(state);
    return kDone;
}

Status File::Create(std::u16string_view path, std::int32_t access, std::int32_t share, std::int32_t disposition,
                    std::int32_t attributes, std::int32_t options, File& file)
{
    const std::optional<std::string> systemPath = SystemPath(path);
    const bool isUsualMode = access == 3 && share == 3 && disposition == 2 && attributes == 1 && options == 0;
    if (!systemPath || systemPath->back() == '/' || !isUsualMode) {
        return kInvalidPath;
    }
    auto state = std::make_unique<State>();
    if (const int error = ResolveTarget(*systemPath, state->target)) {
        return StatusOfErrno(error);
    }
    struct stat old {};
    const bool replaces = stat(state->target.c_str(), &old) == 0;
    // Renaming would also replace a file that its permissions protect, and a device by a file.
    if (replaces && (!S_ISREG(old.st_mode) || ::access(state->target.c_str(), W_OK) != 0)) {
        return kAccessDenied;
    }
    for (int attempt = 0; attempt < 100 && state->descriptor < 0; ++attempt) {
        std::string temporary = TemporaryName(state->target);
        state->descriptor = OpenRestarted(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
        if (state->descriptor >= 0) {
            state->temporary = std::move(temporary);
        } else if (errno != EEXIST) {
            return StatusOfErrno(errno);
        }
    }
    if (state->descriptor < 0) {
        return kIoError;
    }
    if (replaces && fchmod(state->descriptor, old.st_mode & 07777) != 0) {
        return StatusOfErrno(errno);
    }
    file.mState = std::move(state);
    return kDone;
}

Status File::GetSizeOnDisk(std::uint64_t& size) const noexcept
{
    if (mState == nullptr) {
        return kIoError;
    }
    struct stat status {};
    if (fstat(mState->descriptor, &status) != 0) {
        return StatusOfErrno(errno);
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return kDone;
}

Status File::Read(std::span<char> buffer, std::uint32_t& read) noexcept
{
    if (mState == nullptr || !mState->target.empty()) {
        return kIoError;
    }
    const std::size_t wanted = std::min<std::size_t>(buffer.size(), std::numeric_limits<std::uint32_t>::max());
    std::size_t got = 0;
    while (got < wanted) {
        const ssize_t count = ::read(mState->descriptor, buffer.data() + got, wanted - got);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            got += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            return StatusOfErrno(errno);
        }
    }
    read = static_cast<std::uint32_t>(got);
    return kDone;
}

Status File::Write(std::span<const char> bytes) noexcept
{
    if (mState == nullptr || mState->temporary.empty()) {
        return kIoError;
    }
    while (!bytes.empty()) {
        const ssize_t count = ::write(mState->descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            const Status status = StatusOfErrno(errno);
            Close();
            return status;
        }
    }
    // Some file systems tell of a full medium only now.
    const int descriptor = std::exchange(mState->descriptor, -1);
    if ((close(descriptor) != 0 && errno != EINTR) ||
        std::rename(mState->temporary.c_str(), mState->target.c_str()) != 0) {
        const Status status = StatusOfErrno(errno);
        Close();
        return status;
    }
    mState->temporary.clear();
    return kDone;
}

void File::Close() noexcept
{
    mState.reset();
}

std::u16string PathUtils::GetFilePart(std::u16string_view path)
{
    return std::u16string(path.substr(path.rfind(u'/') + 1)); // npos + 1 is 0
}

} // namespace ORB
