/// The program's commands: each adds itself to the command line and runs in its callback.
#pragma once

#include <kestrel/importhost/Importer.h>
#include <tessel/document/OpenClip.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tessel::cli {

class CommandLine;

/// Exit codes of the program.
enum ExitCode : int {
    kDone = 0,
    kWorkFailed = 1,
    kWrongCommandLine = 2,
    kNotAsExpected = 3, ///< verify: something is not as the clip says
    kUndecided = 4,     ///< verify: it cannot be told, or nothing could be compared
};

/// A command line that parses but makes no sense; one line for a person. Ends the program with
/// `kWrongCommandLine`.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What all commands share: the global options, filled before a command runs.
struct Context {
    std::filesystem::path plugin; ///< `--plugin`; empty: looked for
    bool noTestingPlugins = false;
    char* const* arguments = nullptr; ///< the program's own, its name first, ending in null
    int exitCode = kDone;             ///< what the program ends with when the command returns

    /// The plug-in, loaded at the first call. @throws importhost::HostError
    [[nodiscard]] std::shared_ptr<const importhost::Importer> LoadImporter();

    /// Opens a clip. A name that no clip can have is refused before the plug-in is loaded.
    /// @throws importhost::HostError
    [[nodiscard]] document::OpenedClip OpenClip(const std::filesystem::path& file,
                                                const document::OpenOptions& options = {});

private:
    std::shared_ptr<const importhost::Importer> mImporter;
};

/// Writes to standard output. @throws importhost::HostError where it takes no more (closed pipe, full disk).
/// @{
void WriteOut(std::string_view text);
/// Hands over what is still buffered; the program calls it at its end.
void FlushOut();
/// @}

/// Writes "tessel: `line`" to standard error, control characters made visible so that it stays one line.
void WriteError(std::string_view line) noexcept;

/// Writes a line that is not an error to standard error, control characters made visible.
void WriteNote(std::string_view line) noexcept;

/// Lets writes to a closed pipe, or beyond the largest size of files, fail instead of ending the program.
/// Called once, before any thread.
void LetWritesFail() noexcept;

/// Each declares one command. Running it throws `importhost::HostError` for work that failed, `UsageError` and
/// `typed::SettingError` for a wrong command line; the context outlives the command line. @{
void AddInfoCommand(CommandLine& commandLine, Context& context);
void AddRenderCommand(CommandLine& commandLine, Context& context);
void AddJoinCommand(CommandLine& commandLine, Context& context);
void AddBenchCommand(CommandLine& commandLine, Context& context);
void AddDamageCommand(CommandLine& commandLine, Context& context);
void AddEditCommand(CommandLine& commandLine, Context& context);
void AddVerifyCommand(CommandLine& commandLine, Context& context);
void AddViewCommand(CommandLine& commandLine, Context& context);
void AddThumbnailCommand(CommandLine& commandLine, Context& context);
void AddNewCommand(CommandLine& commandLine);
void AddSetCommand(CommandLine& commandLine);
void AddListCommand(CommandLine& commandLine);
void AddSchemaCommand(CommandLine& commandLine);
/// Added last: it explains the others.
void AddHelpCommand(CommandLine& commandLine);
/// @}

} // namespace tessel::cli
