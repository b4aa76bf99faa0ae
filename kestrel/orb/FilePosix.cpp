#include "File.h"
#include "FileReplacement.h"
#include "SaveReport.h"

#include <kestrel/qelcore/files/DescriptorPosix.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/Unicode.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace ORB {

using qelcore::files::Descriptor;

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

int OpenRestarted(const char* path, int flags) noexcept
{
    int descriptor = -1;
    do {
        descriptor = open(path, flags | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

/// Opens an ordinary file for reading. @return the descriptor, or -1 with `errno`.
int OpenOrdinaryFile(const char* path) noexcept
{
    // The type is checked first, because opening a pipe would wake its writer.
    struct stat status {};
    if (stat(path, &status) != 0) {
        return -1;
    }
    if (!S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EACCES; // A pipe or a device has no size.
        return -1;
    }
    // O_NONBLOCK, because a pipe may have taken the name in between.
    int descriptor = OpenRestarted(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0 && errno == EWOULDBLOCK) {
        // Another process has a lease on the file. The system ends it after a time, so this waits.
        descriptor = OpenRestarted(path, O_RDONLY | O_NOCTTY);
    }
    if (descriptor >= 0 && fstat(descriptor, &status) == 0 && !S_ISREG(status.st_mode)) {
        close(descriptor);
        errno = EACCES;
        return -1;
    }
    return descriptor;
}

/// Writes all bytes. @return 0, or an error number.
int WriteAll(int descriptor, std::span<const char> bytes) noexcept
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }
    return 0;
}

constexpr char kLogContext[] = "ORB::File";

/// Reports the result of a save to the log and to the listener.
void Report(const std::u16string& path, Status status, const ReplacementOutcome& outcome)
{
    std::string failure;
    if (outcome.error != 0) {
        failure = WriteFailureText(outcome);
    }
    if (!outcome.copyOfOldFile.empty()) {
        failure += "; the file is damaged, and its old content is in " + outcome.copyOfOldFile;
    }
    if (!outcome.notKept.empty()) {
        qelcore::logging::Log(kLogContext, qelcore::text::ToUTF8(path) + ": saved, but it could not keep its " +
                                               outcome.notKept);
    }
    ReportSave({path, status, failure});
}

} // namespace

/// The files that are open in a scope. A descriptor closes with the last file that reads through it.
struct ScopedReading::State {
    std::map<std::string, std::shared_ptr<const Descriptor>, std::less<>> opened;
};

namespace {

/// The outermost `ScopedReading` of this thread; null outside of any.
thread_local ScopedReading::State* tReading = nullptr;

} // namespace

ScopedReading::ScopedReading()
{
    if (tReading == nullptr) {
        mState = std::make_unique<State>();
        tReading = mState.get();
    }
}

ScopedReading::~ScopedReading()
{
    if (mState != nullptr) {
        tReading = nullptr;
    }
}

struct File::State {
    std::shared_ptr<const Descriptor> reading;  ///< of a file that is read
    off_t place = 0;                            ///< where the next read begins
    std::optional<FileReplacement> replacement; ///< of a created file, until it has been written
    std::u16string path;                        ///< a created file's, as it was given
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
    std::shared_ptr<const Descriptor>* kept = tReading != nullptr ? &tReading->opened[*systemPath] : nullptr;
    if (kept != nullptr && *kept != nullptr) {
        state->reading = *kept;
    } else {
        const auto opened = std::make_shared<Descriptor>();
        opened->Take(OpenOrdinaryFile(systemPath->c_str()));
        if (!opened->IsOpen()) {
            return StatusOfErrno(errno);
        }
        state->reading = opened;
        if (kept != nullptr) {
            *kept = opened;
        }
    }
    file.mState = std::move(state);
    return kDone;
}

Status File::Create(std::u16string_view path, std::int32_t access, std::int32_t share, std::int32_t disposition,
                    std::int32_t attributes, std::int32_t options, File& file)
{
    const auto fail = [path](Status status, std::string why) {
        ReportSave({std::u16string(path), status, std::move(why)});
        return status;
    };
    const std::optional<std::string> systemPath = SystemPath(path);
    const bool isUsualMode = access == 3 && share == 3 && disposition == 2 && attributes == 1 && options == 0;
    if (!systemPath || systemPath->back() == '/' || !isUsualMode) {
        return fail(kInvalidPath, "this is not a file name");
    }
    auto state = std::make_unique<State>();
    state->path = path;
    state->replacement.emplace();
    Destination destination;
    if (const int error = FindDestination(*systemPath, destination)) {
        return fail(StatusOfErrno(error), WriteFailureText(error));
    }
    if (destination.kind == Destination::Kind::Special) {
        return fail(kAccessDenied, "it is a device or a pipe");
    }
    const ReplacementOutcome begun = state->replacement->Begin(destination);
    if (begun.error != 0) {
        return fail(StatusOfErrno(begun.error), WriteFailureText(begun));
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
    const int descriptor = mState->replacement ? mState->replacement->Descriptor() : mState->reading->Get();
    if (fstat(descriptor, &status) != 0) {
        return StatusOfErrno(errno);
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return kDone;
}

Status File::Read(std::span<char> buffer, std::uint32_t& read) noexcept
{
    if (mState == nullptr || mState->reading == nullptr) {
        return kIoError;
    }
    const std::size_t wanted = std::min<std::size_t>(buffer.size(), std::numeric_limits<std::uint32_t>::max());
    std::size_t got = 0;
    while (got < wanted) {
        const ssize_t count = ::pread(mState->reading->Get(), buffer.data() + got, wanted - got, mState->place);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            got += static_cast<std::size_t>(count);
            mState->place += count;
        } else if (errno != EINTR) {
            return StatusOfErrno(errno);
        }
    }
    read = static_cast<std::uint32_t>(got);
    return kDone;
}

Status File::Write(std::span<const char> bytes) noexcept
{
    if (mState == nullptr || !mState->replacement) {
        return kIoError;
    }
    Status status = kIoError; // for an exception before the file is in place
    try {
        ReplacementOutcome outcome;
        outcome.error = WriteAll(mState->replacement->Descriptor(), bytes);
        if (outcome.error == 0) {
            outcome = mState->replacement->Commit();
        }
        status = outcome.error == 0 ? kDone : StatusOfErrno(outcome.error);
        Report(mState->path, status, outcome);
    } catch (const std::exception&) {
        qelcore::logging::LogCurrentException(kLogContext);
    }
    Close();
    return status;
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
