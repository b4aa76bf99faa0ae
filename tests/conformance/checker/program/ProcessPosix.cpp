#include "Process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

extern char** environ; // NOLINT(readability-redundant-declaration): POSIX has no header for it

namespace conformance {

namespace {

/// The descriptor under which a started process finds its channel: the first behind the standard ones.
constexpr int kChannel = 3;

/// Closes a descriptor.
class Descriptor {
public:
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int Get() const noexcept { return mDescriptor; }
    void Close() noexcept
    {
        if (mDescriptor >= 0) {
            close(mDescriptor);
        }
        mDescriptor = -1;
    }

private:
    int mDescriptor;
};

ProcessEnd NotStarted(const std::string& what, int error)
{
    return {ProcessEnd::How::NotStarted, 0, what + ": " + std::strerror(error), ""};
}

std::vector<std::string> Environment(const ProcessOrder& order)
{
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        const bool isReplaced =
            std::any_of(order.environment.begin(), order.environment.end(),
                        [&text](const auto& added) { return text.rfind(added.first + "=", 0) == 0; });
        const bool isLeftOut = !order.withoutVariables.empty() && text.rfind(order.withoutVariables, 0) == 0;
        if (!isReplaced && !isLeftOut) {
            variables.push_back(text);
        }
    }
    for (const auto& [name, value] : order.environment) {
        variables.push_back(name + "=" + value);
    }
    return variables;
}

/// The texts as a null-terminated array of pointers into `texts`.
std::vector<char*> Pointers(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// @return 0 and the process in `process`, or an error number.
int Start(const ProcessOrder& order, int channel, pid_t& process)
{
    std::vector<std::string> arguments = order.arguments;
    arguments.insert(arguments.begin(), order.executable.string());
    std::vector<std::string> environment = Environment(order);

    posix_spawn_file_actions_t actions;
    if (const int error = posix_spawn_file_actions_init(&actions); error != 0) {
        return error;
    }
    int error = 0;
    const auto add = [&error](int result) { error = error == 0 ? result : error; };
    add(posix_spawn_file_actions_adddup2(&actions, channel, kChannel)); // clears its close-on-exec flag too
    if (order.showOutput) {
        add(posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO));
    } else {
        add(posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0));
        add(posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO));
    }
    if (error == 0) {
        error = posix_spawn(&process, order.executable.c_str(), &actions, nullptr, Pointers(arguments).data(),
                            Pointers(environment).data());
    }
    posix_spawn_file_actions_destroy(&actions);
    return error;
}

/// Reads what is there, without waiting. @return false once nothing more can come.
bool Drain(int channel, std::string& report)
{
    std::array<char, 4096> buffer{};
    while (true) {
        const ssize_t length = read(channel, buffer.data(), buffer.size());
        if (length > 0) {
            report.append(buffer.data(), static_cast<std::size_t>(length));
        } else if (length == 0) {
            return false;
        } else if (errno != EINTR) {
            return errno == EAGAIN;
        }
    }
}

} // namespace

std::filesystem::path OwnExecutable()
{
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

ProcessEnd RunProcess(const ProcessOrder& order)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return NotStarted("no pipe for the check's report can be had", errno);
    }
    const Descriptor reading(ends[0]);
    Descriptor writing(ends[1]);
    pid_t process = 0;
    if (const int error = Start(order, writing.Get(), process); error != 0) {
        return NotStarted("no process for the check can be started", error);
    }
    writing.Close();
    fcntl(reading.Get(), F_SETFL, O_NONBLOCK);

    const auto deadline = std::chrono::steady_clock::now() + order.timeLimit;
    ProcessEnd end;
    bool isChannelOpen = true;
    bool isKilled = false;
    int status = 0;
    while (true) {
        const pid_t ended = waitpid(process, &status, isKilled ? 0 : WNOHANG);
        if (ended == process) {
            break;
        }
        if (ended < 0 && errno != EINTR) {
            return NotStarted("the check's process is lost", errno);
        }
        if (isKilled) {
            continue;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            kill(process, SIGKILL);
            isKilled = true;
        } else if (isChannelOpen) {
            // The end of the process closes the channel, which ends this wait.
            pollfd waiting{reading.Get(), POLLIN, 0};
            poll(&waiting, 1, 50);
            isChannelOpen = Drain(reading.Get(), end.report);
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }
    Drain(reading.Get(), end.report);
    if (isKilled) {
        end.how = ProcessEnd::How::TimedOut;
    } else if (WIFSIGNALED(status)) {
        end.how = ProcessEnd::How::Crashed;
        end.reason = strsignal(WTERMSIG(status));
    } else {
        end.how = ProcessEnd::How::Exited;
        end.status = WEXITSTATUS(status);
    }
    return end;
}

bool WriteReport(const std::string& report)
{
    const Descriptor channel(kChannel);
    std::size_t sent = 0;
    while (sent < report.size()) {
        const ssize_t length = write(channel.Get(), report.data() + sent, report.size() - sent);
        if (length < 0 && errno != EINTR) {
            return false;
        }
        sent += length > 0 ? static_cast<std::size_t>(length) : 0;
    }
    return true;
}

void EndProcess(int status)
{
    _exit(status);
}

} // namespace conformance
