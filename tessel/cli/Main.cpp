/// The program `tessel`: runs the command that is named and turns what went wrong into one line and an exit
/// code.

#include "CommandLine.h"
#include "Commands.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/logging/Log.h>
#include <tessel/typed/SettingError.h>

#include <exception>
#include <new>
#include <string>

namespace tessel::cli {
namespace {

constexpr char kPluginOption[] = "--plugin";

} // namespace

std::shared_ptr<const importhost::Importer> Context::LoadImporter()
{
    if (!mImporter) {
        const std::filesystem::path file = importhost::FindPlugin(
            {.place = plugin, .placeSaidBy = kPluginOption, .stem = document::kPluginStem});
        mImporter =
            importhost::Importer::Load(file, noTestingPlugins ? importhost::TestingPlugins::AsDebugDatabaseSays
                                                              : importhost::TestingPlugins::Allowed);
    }
    return mImporter;
}

document::OpenedClip Context::OpenClip(const std::filesystem::path& file, const document::OpenOptions& options)
{
    importhost::RequireUTF8Name(file);
    return document::OpenClip(LoadImporter(), file, options);
}

namespace {

int Fail(int exitCode, const std::string& line)
{
    WriteError(line);
    return exitCode;
}

int Run(int argc, char** argv)
{
    LetWritesFail();
    // What a library logs while a command does not listen itself is something that did not work quite as asked.
    const qelcore::logging::ScopedListener listener(
        [](const qelcore::logging::Message& message) { WriteError("warning: " + message.text); });
    try {
        CommandLine commandLine("tessel", "Exact test signals from small documents", TESSEL_VERSION);
        Context context;
        context.arguments = argv;
        const Command shared = commandLine.Shared();
        shared.AddOption(kPluginOption, context.plugin, "The importer plug-in: its file or the folder it is in")
            .ValueName("PATH");
        shared.AddFlag("--no-testing-plugins", context.noTestingPlugins,
                       "Load test plug-ins only where the debug database says so");
        AddNewCommand(commandLine);
        AddInfoCommand(commandLine, context);
        AddSetCommand(commandLine);
        AddListCommand(commandLine);
        AddRenderCommand(commandLine, context);
        AddJoinCommand(commandLine, context);
        AddBenchCommand(commandLine, context);
        AddDamageCommand(commandLine, context);
        AddEditCommand(commandLine, context);
        AddViewCommand(commandLine, context);
        AddVerifyCommand(commandLine, context);
        AddSchemaCommand(commandLine);
        AddThumbnailCommand(commandLine, context);
        AddHelpCommand(commandLine);
        shared.AddExample("tessel new hd.tessel --rate 29.97 --pixel-format v210", "A clip");
        shared.AddExample("tessel info clip.tessel", "What a clip is");
        shared.AddExample("tessel render clip.tessel -o clip.mov", "A movie of it");
        shared.AddExample("tessel help codecs", "What goes into which file");
        commandLine.Run(argc, argv);
        FlushOut();
        return context.exitCode;
    } catch (const UsageError& error) {
        return Fail(kWrongCommandLine, error.what());
    } catch (const typed::SettingError& error) {
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
