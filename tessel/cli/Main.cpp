/// The program `tessel`: parses the command line, runs one command, turns what went wrong into one line
/// and an exit code.

#include "Commands.h"
#include "ValueChecks.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>

#include <CLI/CLI.hpp>

#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

namespace tessel::cli {

std::shared_ptr<const importhost::Importer> Context::LoadImporter()
{
    if (!mImporter) {
        mImporter = importhost::Importer::Load(
            importhost::FindPlugin(plugin), noTestingPlugins ? importhost::TestingPlugins::AsDebugDatabaseSays
                                                             : importhost::TestingPlugins::Allowed);
    }
    return mImporter;
}

importhost::Clip Context::OpenClip(const std::filesystem::path& file, const importhost::OpenOptions& options)
{
    importhost::RequireUTF8Name(file);
    return importhost::Clip::Open(LoadImporter(), file, options);
}

namespace {

int Fail(int exitCode, const std::string& line)
{
    WriteError(line);
    return exitCode;
}

/// Names what was typed for a command where that is none.
std::string WhatIsWrong(const CLI::App& app, const CLI::ParseError& error)
{
    const std::vector<std::string> unknown = app.remaining();
    if (!app.get_subcommands().empty() || unknown.empty()) {
        return error.what();
    }
    std::string known;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        known += (known.empty() ? "" : ", ") + command->get_name();
    }
    return "'" + unknown.front() + "' is no command; there are " + known;
}

/// Parses and runs. @return the exit code; throws what a command throws.
int ParseAndRun(CLI::App& app, const Context& context, int argc, char** argv)
{
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answer) { // --help and --version
        std::ostringstream text;
        app.exit(answer, text, text);
        WriteOut(text.str());
    } catch (const CLI::ParseError& error) {
        return Fail(kWrongCommandLine, WhatIsWrong(app, error) + " (see tessel --help)");
    }
    FlushOut();
    return context.exitCode;
}

int Run(int argc, char** argv)
{
    LetWritesFail();
    try {
        CLI::App app{"Exact test signals from small documents"};
        app.name("tessel");
        app.require_subcommand(1);
        app.fallthrough(); // the options below may also stand behind the command
        app.set_version_flag("--version", std::string("tessel ") + TESSEL_VERSION);

        Context context;
        app.add_option("--plugin", context.plugin, "The importer plug-in: its file or the folder it is in")
            ->check(NotEmpty());
        app.add_flag("--no-testing-plugins", context.noTestingPlugins,
                     "Load test plug-ins only where the debug database says so");
        AddInfoCommand(app, context);
        AddRenderCommand(app, context);
        AddBenchCommand(app, context);
        AddEditCommand(app, context);
        return ParseAndRun(app, context, argc, argv);
    } catch (const UsageError& error) {
        return Fail(kWrongCommandLine, error.what());
    } catch (const std::bad_alloc&) {
        return Fail(kWorkFailed, "out of memory");
    } catch (const std::exception& error) {
        return Fail(kWorkFailed, error.what());
    }
}

} // namespace
} // namespace tessel::cli

int main(int argc, char** argv)
{
    return tessel::cli::Run(argc, argv);
}
