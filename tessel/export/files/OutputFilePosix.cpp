#include "Interrupt.h"
#include "OutputFile.h"

#include <kestrel/orb/FileReplacement.h>
#include <kestrel/qelcore/logging/Log.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <system_error>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;
using qelcore::text::UTF8Text;

/// @param why  an error number, or the outcome of a replacement
template <class Why>
[[noreturn]] void FailToWrite(const std::string& name, const Why& why)
{
    throw ExportError(name + ": cannot be written: " + ORB::WriteFailureText(why));
}

std::string OrCurrent(const fs::path& folder)
{
    return folder.empty() ? "." : folder.native();
}

[[noreturn]] void FailToWriteInto(const fs::path& folder, int error)
{
    throw ExportError(OrCurrent(folder) + ": cannot be written to: " + ORB::WriteFailureText(error));
}

/// @throws ExportError  naming `path`, where nothing can be written
ORB::Destination DestinationOf(const fs::path& path)
{
    ORB::Destination destination;
    if (const int error = ORB::FindDestination(path.native(), destination)) {
        FailToWrite(UTF8Text(path), error);
    }
    return destination;
}

/// @throws ExportError  naming `path`, where the replacement failed
void Commit(const fs::path& path, ORB::FileReplacement& replacement)
{
    const ORB::ReplacementOutcome outcome = replacement.Commit();
    if (!outcome.copyOfOldFile.empty()) {
        throw ExportError(
            fmt::format("{}: cannot be written: {}; the file is damaged, and its old content is in {}",
                        UTF8Text(path), ORB::WriteFailureText(outcome), outcome.copyOfOldFile));
    }
    if (outcome.error != 0) {
        FailToWrite(UTF8Text(path), outcome);
    }
    if (!outcome.notKept.empty()) {
        qelcore::logging::Log("export", fmt::format("{}: written, but it could not keep its {}", UTF8Text(path),
                                                    outcome.notKept));
    }
}

} // namespace

struct OutputFile::State {
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        if (descriptor > STDERR_FILENO && !replacement) {
            ::close(descriptor);
        }
    }

    std::optional<ORB::FileReplacement> replacement; ///< empty for what is written to directly
    int descriptor = -1;                             ///< the replacement's where there is one
    fs::path path;
    bool canSeek = false;
    std::string shownName;
    std::int64_t position = 0;
    std::int64_t size = 0;
};

OutputFile::OutputFile(const fs::path& path) : mState(std::make_unique<State>())
{
    State& state = *mState;
    state.path = path;
    state.shownName = UTF8Text(path);
    const ORB::Destination destination = DestinationOf(path);
    if (destination.kind == ORB::Destination::Kind::Special) {
        state.descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (state.descriptor < 0) {
            FailToWrite(state.shownName, errno);
        }
        return;
    }
    const ORB::ReplacementOutcome begun = state.replacement.emplace().Begin(destination);
    if (begun.error != 0) {
        FailToWrite(state.shownName, begun);
    }
    state.descriptor = state.replacement->Descriptor();
    state.canSeek = true;
}

OutputFile::OutputFile(const New& file) : mState(std::make_unique<State>())
{
    mState->path = file.goal;
    mState->shownName = UTF8Text(file.goal);
    mState->descriptor = ::open(file.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (mState->descriptor < 0) {
        FailToWrite(mState->shownName, errno);
    }
    mState->canSeek = true;
}

OutputFile::OutputFile(StandardOutput) : mState(std::make_unique<State>())
{
    mState->descriptor = STDOUT_FILENO;
    mState->shownName = "standard output";
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
    if (mState->replacement) {
        exporting::Commit(mState->path, *mState->replacement);
    }
}

void RequireReplaceable(const fs::path& path)
{
    if (DestinationOf(path).kind == ORB::Destination::Kind::Special) {
        throw ExportError(fmt::format("{}: cannot be written: it is not an ordinary file", UTF8Text(path)));
    }
}

struct JointReplacement::Replaced {
    explicit Replaced(fs::path file) : path(std::move(file)) {}

    fs::path path;
    ORB::FileReplacement replacement;
};

JointReplacement::JointReplacement(fs::path aside, const fs::path& folder) : mAside(std::move(aside))
{
    std::error_code error;
    if (!fs::create_directory(mAside, error)) {
        FailToWriteInto(folder, error ? error.value() : EEXIST);
    }
}

JointReplacement::~JointReplacement()
{
    for (; !mFiles.empty(); mFiles.pop_back()) {
        const ORB::ReplacementOutcome outcome = mFiles.back().replacement.Undo();
        if (outcome.error != 0) {
            qelcore::logging::Log(
                "export",
                fmt::format("{}: cannot be restored: {}{}", UTF8Text(mFiles.back().path),
                            ORB::WriteFailureText(outcome.error),
                            outcome.copyOfOldFile.empty()
                                ? std::string()
                                : fmt::format("; its old content is in '{}'", outcome.copyOfOldFile)));
        }
    }
}

void JointReplacement::Replace(const fs::path& path, const fs::path& whole)
{
    ORB::FileReplacement& replacement = mFiles.emplace_back(path).replacement;
    if (const int error = replacement.BeginWith(DestinationOf(path), whole.native())) {
        FailToWrite(UTF8Text(path), error);
    }
    replacement.KeepOldAs(mAside / std::to_string(mFiles.size()));
    Commit(path, replacement);
}

void JointReplacement::Accept() noexcept
{
    mFiles.clear();
}

void WaitForMedium(const fs::path& folder)
{
    if (const int error = ORB::SyncFileSystem(OrCurrent(folder))) {
        FailToWriteInto(folder, error);
    }
}

void WaitForNames(const fs::path& folder)
{
    if (const int error = ORB::SyncFolder(OrCurrent(folder))) {
        FailToWriteInto(folder, error);
    }
}

TemporaryFolder::TemporaryFolder(const fs::path& parent)
{
    const std::string folder = OrCurrent(parent);
    ORB::RemoveLeftovers(folder);
    if (const int error = mFolder.Make(folder)) {
        FailToWriteInto(folder, error);
    }
}

bool StandardOutputIsTerminal() noexcept
{
    return ::isatty(STDOUT_FILENO) == 1;
}

bool StandardErrorIsTerminal() noexcept
{
    return ::isatty(STDERR_FILENO) == 1;
}

} // namespace tessel::exporting
