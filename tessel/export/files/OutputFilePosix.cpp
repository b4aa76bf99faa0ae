#include "Interrupt.h"
#include "OutputFile.h"

#include <kestrel/orb/FileReplacement.h>
#include <tessel/export/ExportError.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>
#include <utility>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;

std::string ErrnoText(int error)
{
    return std::generic_category().message(error);
}

[[noreturn]] void FailToWrite(const std::string& name, int error)
{
    throw ExportError("cannot write " + name + ": " + ErrnoText(error));
}

fs::path FolderOf(const fs::path& path)
{
    const fs::path parent = path.parent_path();
    return parent.empty() ? fs::path(".") : parent;
}

/// Where a file goes.
struct Place {
    fs::path path;                 ///< of a file: with all links followed, as their target is replaced
    std::optional<mode_t> oldMode; ///< of the ordinary file there, which the new one keeps
    bool direct = false;           ///< a device or a pipe, which cannot be replaced
};

/// @throws ExportError  where nothing can be written
Place PlaceOf(const fs::path& path, const std::string& shownName)
{
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (!exists && errno != ENOENT) {
        FailToWrite(shownName, errno);
    }
    if (exists && S_ISDIR(status.st_mode)) {
        FailToWrite(shownName, EISDIR);
    }
    if (exists && !S_ISREG(status.st_mode)) {
        // Its name as given: that of a shell's pipe, /dev/fd/63, leads to no other name.
        return {path, std::nullopt, /*direct=*/true};
    }
    // Renaming would also replace a file that its permissions protect.
    if (exists && ::access(path.c_str(), W_OK) != 0) {
        FailToWrite(shownName, errno);
    }
    std::string target;
    if (const int error = ORB::ResolveTarget(path.native(), target)) {
        FailToWrite(shownName, error);
    }
    return {target, exists ? std::optional(status.st_mode & 07777U) : std::nullopt, /*direct=*/false};
}

std::string Shown(const fs::path& path)
{
    return fmt::format("'{}'", path.string());
}

/// The path under which a file without a name can be linked.
std::string DescriptorPath(int descriptor)
{
    return fmt::format("/proc/self/fd/{}", descriptor);
}

/// Opens a file without a name, which vanishes with the process however that ends; -1 where the file system or
/// the kernel has none.
int OpenNameless([[maybe_unused]] const fs::path& folder) noexcept
{
#ifdef O_TMPFILE
    const int descriptor = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666);
    if (descriptor >= 0 && ::access(DescriptorPath(descriptor).c_str(), F_OK) != 0) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
#else
    return -1;
#endif
}

} // namespace

struct OutputFile::State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        if (descriptor > STDERR_FILENO) {
            ::close(descriptor);
        }
        if (!temporary.empty()) {
            ::unlink(temporary.c_str());
        }
    }

    int descriptor = -1;
    fs::path path;       ///< final name, no link
    fs::path temporary;  ///< empty: nameless, or written directly
    bool direct = false; ///< a device, a pipe or standard output
    bool canSeek = false;
    std::string shownName;
    std::int64_t position = 0;
    std::int64_t size = 0;
};

OutputFile::OutputFile(const fs::path& path) : mState(std::make_unique<State>())
{
    State& state = *mState;
    state.shownName = Shown(path);
    Place place = PlaceOf(path, state.shownName);
    state.path = std::move(place.path);
    if (place.direct) {
        state.direct = true;
        state.descriptor = ::open(state.path.c_str(), O_WRONLY | O_CLOEXEC);
        if (state.descriptor < 0) {
            FailToWrite(state.shownName, errno);
        }
        return;
    }
    const fs::path folder = FolderOf(state.path);
    state.canSeek = true;
    state.descriptor = OpenNameless(folder);
    if (state.descriptor < 0) {
        state.temporary = ORB::TemporaryName(state.path.native());
        state.descriptor = ::open(state.temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    }
    if (state.descriptor < 0) {
        const int error = errno;
        state.temporary.clear();
        FailToWrite(state.shownName, error);
    }
    if (place.oldMode && ::fchmod(state.descriptor, *place.oldMode) != 0) {
        FailToWrite(state.shownName, errno);
    }
}

OutputFile::OutputFile(StandardOutput) : mState(std::make_unique<State>())
{
    mState->direct = true;
    mState->descriptor = STDOUT_FILENO;
    mState->shownName = "to standard output";
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&&) noexcept = default;
OutputFile& OutputFile::operator=(OutputFile&&) noexcept = default;

void OutputFile::Write(std::span<const std::byte> bytes)
{
    State& state = *mState;
    while (!bytes.empty()) {
        // A reader that does not read must not keep the program from ending. An interrupted write comes back
        // here, whether it had written something or not.
        if (InterruptGuard::Requested()) {
            throw Interrupted();
        }
        const ssize_t written = ::write(state.descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            FailToWrite(state.shownName, errno);
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        state.position += written;
        state.size = std::max(state.size, state.position);
    }
}

bool OutputFile::CanSeek() const noexcept
{
    return mState->canSeek;
}

void OutputFile::SeekTo(std::int64_t position)
{
    if (::lseek(mState->descriptor, position, SEEK_SET) < 0) {
        FailToWrite(mState->shownName, errno);
    }
    mState->position = position;
}

std::int64_t OutputFile::Position() const noexcept
{
    return mState->position;
}

std::int64_t OutputFile::Size() const noexcept
{
    return mState->size;
}

void OutputFile::Commit()
{
    State& state = *mState;
    if (state.direct) {
        return;
    }
    if (state.temporary.empty()) {
        // A nameless file can only be linked under a new name; the rename then replaces an old file at once.
        const fs::path named = ORB::TemporaryName(state.path.native());
        if (::linkat(AT_FDCWD, DescriptorPath(state.descriptor).c_str(), AT_FDCWD, named.c_str(),
                     AT_SYMLINK_FOLLOW) != 0) {
            FailToWrite(state.shownName, errno);
        }
        state.temporary = named;
    }
    // Some file systems only tell at the end that the disk is full.
    if (::close(std::exchange(state.descriptor, -1)) != 0) {
        FailToWrite(state.shownName, errno);
    }
    if (::rename(state.temporary.c_str(), state.path.c_str()) != 0) {
        FailToWrite(state.shownName, errno);
    }
    state.temporary.clear();
}

void RequireReplaceable(const fs::path& path)
{
    if (PlaceOf(path, Shown(path)).direct) {
        throw ExportError(fmt::format("cannot write {}: it is no ordinary file", Shown(path)));
    }
}

void Replace(const fs::path& path, const fs::path& whole)
{
    const std::string shownName = Shown(path);
    const Place place = PlaceOf(path, shownName);
    if ((place.oldMode && ::chmod(whole.c_str(), *place.oldMode) != 0) ||
        ::rename(whole.c_str(), place.path.c_str()) != 0) {
        FailToWrite(shownName, errno);
    }
}

TemporaryFolder::TemporaryFolder(const fs::path& parent)
{
    const fs::path folder = parent.empty() ? fs::path(".") : parent;
    mPath = ORB::TemporaryName((folder / "x").native());
    if (::mkdir(mPath.c_str(), 0777) != 0) {
        throw ExportError("cannot write into '" + folder.string() + "': " + ErrnoText(errno));
    }
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    fs::remove_all(mPath, ignored);
}

bool StandardErrorIsTerminal() noexcept
{
    return ::isatty(STDERR_FILENO) == 1;
}

} // namespace tessel::exporting
