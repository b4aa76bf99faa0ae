/// A process of its own for each check: started, given a channel for its report and a time limit.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace conformance {

/// How a process ended.
struct ProcessEnd {
    enum class How {
        Exited,    ///< by itself, with `status`
        Crashed,   ///< stopped by the system; `reason` names the signal
        TimedOut,  ///< stopped by us at the time limit
        NotStarted ///< there was no process; `reason` says why
    };
    How how = How::NotStarted;
    int status = 0;
    std::string reason;
    std::string report; ///< all that it wrote with `WriteReport`
};

struct ProcessOrder {
    std::filesystem::path executable;
    std::vector<std::string> arguments;                           ///< without the executable's name
    std::vector<std::pair<std::string, std::string>> environment; ///< added to ours
    std::string withoutVariables;                                 ///< ours that begin with this are left out
    std::chrono::milliseconds timeLimit{0};
    bool showOutput = false; ///< else its standard output and error go nowhere
};

/// The file of the running program, by which it can start itself again. Empty where the system cannot say.
[[nodiscard]] std::filesystem::path OwnExecutable();

/// Runs a process to its end. Its standard output goes to our standard error, if anywhere. Never throws for
/// what the process does. Threads: [any-thread].
[[nodiscard]] ProcessEnd RunProcess(const ProcessOrder& order);

/// In the started process: sends `report` to the one that called `RunProcess`, once.
/// @return whether all of it was sent.
[[nodiscard]] bool WriteReport(const std::string& report);

/// In the started process: ends it at once, so that nothing of the plug-in runs any more.
[[noreturn]] void EndProcess(int status);

} // namespace conformance
