/// Running programs that tests compare with.
#pragma once

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace testsupport {

/// What a shell command wrote to its standard output, and whether it ended with 0.
struct CommandResult {
    bool succeeded = false;
    std::string output;
};

[[nodiscard]] inline CommandResult RunCommand(const std::string& command)
{
    CommandResult result;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return result;
    }
    std::array<char, 4096> block{};
    for (std::size_t got = 0; (got = std::fread(block.data(), 1, block.size(), pipe)) > 0;) {
        result.output.append(block.data(), got);
    }
    const int status = pclose(pipe);
    result.succeeded = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return result;
}

[[nodiscard]] inline bool IsInstalled(const std::string& program)
{
    return RunCommand("command -v " + program + " 2>/dev/null").succeeded;
}

/// Text as one word of a shell command.
[[nodiscard]] inline std::string Quoted(const std::string& text)
{
    std::string quoted(1, '\'');
    for (const char c : text) {
        if (c == '\'') {
            quoted.append("'\\''");
        } else {
            quoted.push_back(c);
        }
    }
    quoted.push_back('\'');
    return quoted;
}

} // namespace testsupport
