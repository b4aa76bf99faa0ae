/// Errors of the host, with messages for a person. Threads: [any-thread].
#pragma once

#include <kestrel/Export.h>

#include <stdexcept>
#include <string>

namespace importhost {

/// Work that failed. `what()` is one line for a person: what was wrong, with which file and key, and what
/// would be right.
class KESTRELHOST_API HostError : public std::runtime_error {
public:
    explicit HostError(const std::string& line) : std::runtime_error(line) {}
};

/// A request that the plug-in failed, with the plug-in's own report of it.
class KESTRELHOST_API PluginFailure : public HostError {
public:
    /// @param failure  What failed, in one line.
    /// @param report   What the plug-in logged last; may be empty.
    PluginFailure(const std::string& failure, const std::string& report)
        : HostError(report.empty() ? failure : failure + ": " + report), mFailure(failure), mReport(report)
    {
    }

    [[nodiscard]] const std::string& Failure() const noexcept { return mFailure; }
    [[nodiscard]] const std::string& Report() const noexcept { return mReport; }

private:
    std::string mFailure;
    std::string mReport;
};

} // namespace importhost
