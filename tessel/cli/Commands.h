/// The program's commands: each adds itself to the command line and runs in its callback.
#pragma once

#include <importhost/Importer.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

namespace tessel::cli {

/// Exit codes of the program.
enum ExitCode : int { kDone = 0, kWorkFailed = 1, kWrongCommandLine = 2 };

/// A command line that parses but makes no sense; one line for a person. Ends the program with
/// `kWrongCommandLine`.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What all commands share: the global options, filled before a command's callback runs.
struct Context {
    std::filesystem::path plugin; ///< `--plugin`; empty: looked for
    bool noTestingPlugins = false;
    int exitCode = kDone; ///< what the program ends with when the callback returns

    /// The plug-in, loaded at the first call. @throws importhost::HostError
    [[nodiscard]] std::shared_ptr<const importhost::Importer> LoadImporter();

private:
    std::shared_ptr<const importhost::Importer> mImporter;
};

/// Each registers one command. Its callback throws `importhost::HostError` for work that failed and
/// `UsageError` for a wrong command line; the context outlives the app. @{
void AddInfoCommand(CLI::App& app, Context& context);
void AddRenderCommand(CLI::App& app, Context& context);
void AddBenchCommand(CLI::App& app, Context& context);
void AddEditCommand(CLI::App& app, Context& context);
/// @}

} // namespace tessel::cli
