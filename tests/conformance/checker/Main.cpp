/// Checks an importer plug-in: `conformance PLUGIN [--check ID]... [--expect-failing ID]... [--time-limit
/// SECONDS]
/// [--json]`, or lists the checks: `conformance --list`.
///
/// Every check runs in a process of its own with a time limit, so that a plug-in which crashes or hangs
/// fails that check and no other. Exit code 0 when exactly the checks named with `--expect-failing` fail
/// (without any: when all pass), 1 otherwise, 2 for a wrong command line.

#include "Check.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <thread>

namespace conformance {

namespace {

struct Outcome {
    bool passed = false;
    std::string reason;
};

/// The child's half: runs the check and says on `report` what went wrong.
[[noreturn]] void RunInChild(const Check& check, const std::filesystem::path& pluginFile, int report)
{
    std::string reason;
    try {
        Plugin plugin(pluginFile);
        check.run(plugin);
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
        reason = "an exception left the plug-in";
    }
    if (!reason.empty() && write(report, reason.data(), std::min<std::size_t>(reason.size(), 4000)) < 0) {
        _exit(2);
    }
    std::fflush(nullptr);
    _exit(reason.empty() ? 0 : 1);
}

Outcome Run(const Check& check, const std::filesystem::path& pluginFile, std::chrono::seconds timeLimit)
{
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        return {false, "no pipe can be had"};
    }
    const pid_t child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        // What the plug-in logs is its own affair.
        const int quiet = open("/dev/null", O_WRONLY);
        if (std::getenv("CONFORMANCE_VERBOSE") == nullptr) {
            dup2(quiet, STDERR_FILENO);
        }
        RunInChild(check, pluginFile, pipeEnds[1]);
    }
    close(pipeEnds[1]);
    const auto deadline = std::chrono::steady_clock::now() + timeLimit;
    int status = 0;
    bool hung = false;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline && !hung) {
            hung = true;
            kill(child, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    char text[4000];
    const ssize_t length = read(pipeEnds[0], text, sizeof text);
    close(pipeEnds[0]);
    if (hung) {
        return {false, "did not end within " + std::to_string(timeLimit.count()) + " seconds"};
    }
    if (WIFSIGNALED(status)) {
        return {false, std::string("crashed: ") + strsignal(WTERMSIG(status))};
    }
    if (WEXITSTATUS(status) != 0) {
        return {false, length > 0 ? std::string(text, static_cast<std::size_t>(length))
                                  : "exited with status " + std::to_string(WEXITSTATUS(status))};
    }
    return {true, ""};
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
        }
        quoted += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
    return quoted + "\"";
}

struct Options {
    std::filesystem::path plugin;
    std::vector<std::string> only;
    std::vector<std::string> expectFailing;
    std::chrono::seconds timeLimit{120}; // generous: sanitizers slow everything down
    bool json = false;
    bool list = false;
};

bool Parse(int argc, char** argv, Options& options)
{
    for (int at = 1; at < argc; ++at) {
        const std::string argument = argv[at];
        if (argument == "--check" && at + 1 < argc) {
            options.only.emplace_back(argv[++at]);
        } else if (argument == "--expect-failing" && at + 1 < argc) {
            options.expectFailing.emplace_back(argv[++at]);
        } else if (argument == "--time-limit" && at + 1 < argc) {
            options.timeLimit = std::chrono::seconds(std::strtol(argv[++at], nullptr, 10));
        } else if (argument == "--json") {
            options.json = true;
        } else if (argument == "--list") {
            options.list = true;
        } else if (options.plugin.empty() && argument.rfind("--", 0) != 0) {
            options.plugin = std::filesystem::absolute(argument);
        } else {
            return false;
        }
    }
    return options.list || !options.plugin.empty();
}

bool Contains(const std::vector<std::string>& ids, const std::string& id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

void PrintJson(const Check& check, const Outcome& outcome, bool first)
{
    std::printf("%s{\"id\": %s, \"sentence\": %s, \"passed\": %s, \"reason\": %s}\n", first ? "" : ",",
                Quoted(check.id).c_str(), Quoted(check.sentence).c_str(), outcome.passed ? "true" : "false",
                Quoted(outcome.reason).c_str());
}

void PrintLine(const Check& check, const Outcome& outcome)
{
    if (outcome.passed) {
        std::printf("ok    %s\n", check.id.c_str());
    } else {
        std::printf("FAIL  %s: %s\n      %s\n", check.id.c_str(), check.sentence.c_str(),
                    outcome.reason.c_str());
    }
}

/// Runs the chosen checks. @return how many did not do what was expected of them.
std::size_t RunAll(const std::vector<Check>& checks, const Options& options)
{
    std::size_t surprises = 0;
    bool first = true;
    for (const Check& check : checks) {
        if (!options.only.empty() && !Contains(options.only, check.id)) {
            continue;
        }
        const Outcome outcome = Run(check, options.plugin, options.timeLimit);
        options.json ? PrintJson(check, outcome, first) : PrintLine(check, outcome);
        std::fflush(stdout);
        first = false;
        if (outcome.passed == Contains(options.expectFailing, check.id)) {
            ++surprises;
            if (outcome.passed) {
                std::fprintf(stderr, "conformance: %s was to fail and passed\n", check.id.c_str());
            }
        }
    }
    return surprises;
}

int Main(int argc, char** argv)
{
    Options options;
    if (!Parse(argc, argv, options)) {
        std::fputs("usage: conformance PLUGIN [--check ID]... [--expect-failing ID]... [--time-limit SECONDS] "
                   "[--json]\n"
                   "       conformance --list\n",
                   stderr);
        return 2;
    }
    const std::vector<Check> checks = AllChecks();
    std::vector<std::string> known;
    for (const Check& check : checks) {
        known.push_back(check.id);
        if (options.list) {
            std::printf("%-28s %s\n", check.id.c_str(), check.sentence.c_str());
        }
    }
    for (const auto& ids : {options.only, options.expectFailing}) {
        for (const std::string& id : ids) {
            if (!Contains(known, id)) {
                std::fprintf(stderr, "conformance: there is no check '%s'; --list names them\n", id.c_str());
                return 2;
            }
        }
    }
    if (options.list) {
        return 0;
    }
    if (options.json) {
        std::puts("[");
    }
    const std::size_t surprises = RunAll(checks, options);
    if (options.json) {
        std::puts("]");
    }
    return surprises == 0 ? 0 : 1;
}

} // namespace
} // namespace conformance

int main(int argc, char** argv)
{
    return conformance::Main(argc, argv);
}
