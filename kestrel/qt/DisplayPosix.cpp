#include "Display.h"
#include "ExistingApplication.h"
#include "Messages.h"
#include "probe/Answer.h"

#include <kestrel/qelcore/text/PathText.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QString>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>
#include <system_error>

extern char** environ; // NOLINT: POSIX declares it nowhere

namespace kestrelqt {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience{20}; // a display that answers later cannot be used
constexpr std::size_t kLongestAnswer = 65536;

bool IsSet(const char* name)
{
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): ui thread, as all of Qt
    return value != nullptr && *value != '\0';
}

std::filesystem::path ProbeFile()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&WhyNoWindow), &info) == 0 || info.dli_fname == nullptr) {
        return kProbeFile;
    }
    return std::filesystem::path(info.dli_fname).parent_path() / kProbeFile;
}

/// A program whose standard output is read here.
class Child {
public:
    /// @throws std::system_error  it cannot be started.
    explicit Child(const std::filesystem::path& program)
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::system_error(errno, std::generic_category());
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        std::string name = program.native();
        std::array<char*, 2> arguments{name.data(), nullptr};
        const int error = posix_spawn(&mProcess, name.c_str(), &actions, nullptr, arguments.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        mOutput = ends[0];
        if (error != 0) {
            close(mOutput);
            throw std::system_error(error, std::generic_category());
        }
    }
    ~Child()
    {
        close(mOutput);
        kill(mProcess, SIGKILL); // It may hang. Without effect if it has ended.
        while (waitpid(mProcess, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// Everything that the program writes; nothing if it does not end in time.
    [[nodiscard]] std::optional<std::string> Read() const
    {
        const auto end = Clock::now() + kPatience;
        std::string text;
        for (;;) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
            pollfd output{mOutput, POLLIN, 0};
            const int ready = left <= 0 ? 0 : poll(&output, 1, static_cast<int>(left));
            if (ready == 0) {
                return std::nullopt;
            }
            std::array<char, 4096> part{};
            const ssize_t count = ready < 0 ? -1 : read(mOutput, part.data(), part.size());
            if (count < 0 && errno != EINTR) {
                return std::nullopt;
            }
            if (count == 0 || text.size() > kLongestAnswer) {
                return text;
            }
            text.append(part.data(), static_cast<std::size_t>(count < 0 ? 0 : count));
        }
    }

private:
    pid_t mProcess = -1;
    int mOutput = -1;
};

/// The reason in Qt's messages, in one line; empty if windows can be opened.
std::string ReasonIn(const std::string& answer)
{
    constexpr std::string_view kVerdict = "This application failed to start";
    constexpr std::string_view kAvailable = "Available platform plugins are: ";
    std::string reason;
    std::string available;
    std::istringstream lines(answer);
    for (std::string line; std::getline(lines, line);) {
        if (line == kProbeSuccess) {
            return {};
        }
        if (const std::size_t at = line.find(kAvailable); at != std::string::npos) {
            available = "; Qt has platform plug-ins for " + line.substr(at + kAvailable.size());
            available.erase(available.find_last_not_of(". ") + 1);
        }
        if (!line.starts_with(kVerdict) && !IsChatter(QString::fromStdString(line))) {
            reason += (reason.empty() ? "" : "; ") + line;
        }
    }
    return "Qt cannot open a window here: " + (reason.empty() ? "its platform plug-in failed" : reason) +
           available;
}

} // namespace

std::string WhyNoWindow()
{
    if (HasApplication()) {
        return WhyNotThisApplication();
    }
    if (!IsSet("QT_QPA_PLATFORM") && !IsSet("DISPLAY") && !IsSet("WAYLAND_DISPLAY")) {
        return "there is no display (DISPLAY and WAYLAND_DISPLAY are not set)";
    }
    const std::filesystem::path probe = ProbeFile();
    try {
        const std::optional<std::string> answer = Child(probe).Read();
        return answer ? ReasonIn(*answer) : "the display does not answer";
    } catch (const std::system_error& error) {
        return "whether Qt can open a window is not known, because " + qelcore::text::UTF8Text(probe) +
               " cannot be run: " + error.code().message();
    }
}

} // namespace kestrelqt
