/// The program `tessel`: parses the command line, runs one command, turns what went wrong into one line
/// and an exit code.

#include "Commands.h"

#include <importhost/HostError.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

namespace tessel::cli {

std::shared_ptr<const importhost::Importer> Context::LoadImporter()
{
    if (!mImporter) {
        mImporter = importhost::Importer::Load(importhost::FindPlugin(plugin),
                                               noTestingPlugins
                                                   ? importhost::TestingPlugins::AsDebugDatabaseSays
                                                   : importhost::TestingPlugins::Allowed);
    }
    return mImporter;
}

namespace {

int Fail(int exitCode, const std::string& line)
{
    std::fprintf(stderr, "tessel: %s\n", line.c_str());
    return exitCode;
}

int Run(int argc, char** argv)
{
    CLI::App app{"Exact test signals from small documents"};
    app.name("tessel");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::string("tessel ") + TESSEL_VERSION);

    Context context;
    app.add_option("--plugin", context.plugin, "The importer plug-in: its file or the folder it is in");
    app.add_flag("--no-testing-plugins", context.noTestingPlugins,
                 "Load test plug-ins only where the debug database says so");
    AddInfoCommand(app, context);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& success) {
        return app.exit(success);
    } catch (const CLI::ParseError& error) {
        return Fail(kWrongCommandLine, std::string(error.what()) + " (see tessel --help)");
    } catch (const UsageError& error) {
        return Fail(kWrongCommandLine, error.what());
    } catch (const std::bad_alloc&) {
        return Fail(kWorkFailed, "out of memory");
    } catch (const std::exception& error) {
        return Fail(kWorkFailed, error.what());
    }
    return context.exitCode;
}

} // namespace
} // namespace tessel::cli

int main(int argc, char** argv)
{
    return tessel::cli::Run(argc, argv);
}
