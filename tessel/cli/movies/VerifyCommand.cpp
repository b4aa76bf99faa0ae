/// The command line of `tessel verify`.

#include "MovieCommands.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>
#include <tessel/cli/OutputOptions.h>

#include <memory>

namespace tessel::cli {

void AddVerifyCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<VerifyOptions>();
    const Command command =
        commandLine.AddCommand("verify", "Compare a movie that came back with its clip, and name what differs");
    command.AddOption("CLIP", options->clip, "The clip that was sent").TakesFile(FileKind::Clip);
    command
        .AddOption("MOVIE", options->movie,
                   "What came back: a movie, a sound file, - for standard input, or pictures with a number in "
                   "their name, as in out/%06d.png")
        .TakesFile(FileKind::Any);
    command.AddFlag("--json", options->asJson,
                    "Print the report as JSON (see --schema), or the list of checks");
    command.AddOption("--junit", options->junit, "Also write the report as JUnit's XML")
        .ValueName("FILE")
        .TakesFile(FileKind::Any);
    command.AddOption("--html", options->html, "Also write the report as one page with pictures")
        .ValueName("FILE")
        .TakesFile(FileKind::Any);
    command.AddFlag("-q,--quiet", options->isQuiet, "Print nothing; the exit code tells");
    command.AddOption("--only", options->only, "Judge this check alone; may be given several times")
        .OneEach()
        .ValueName("ID");
    command.AddOption("--accept", options->accept, "This fault is fine; may be given several times")
        .OneEach()
        .ValueName("ID");
    command
        .AddOption("--tolerance", options->tolerances,
                   "What is still fine, instead of the codec's default, as in color.gain=0.05")
        .OneEach()
        .ValueName("NAME=VALUE");
    command.AddFlag("--strict", options->isStrict,
                    "What the container or codec cannot say or carry is a fault too");
    command
        .AddChoice("--fidelity", options->fidelity, {"some", "all"},
                   "Measure PSNR and SSIM of some pictures or of all")
        .ShowDefault();
    command.AddFlag("--list", options->printList, "Print all checks: name, severity, what makes it visible");
    command.AddOption("--visible", options->visible, "Print what this clip can show and what it cannot")
        .ValueName("CLIP")
        .TakesFile(FileKind::Clip);
    command.AddFlag("--schema", options->printSchema, "Print the JSON schema of --json");
    command.AddFlag("--allow-default", options->allowDefault,
                    "Compare with the default clip where the document cannot be read");
    command.AddFlag("--no-progress", options->noProgress, "No progress bar");
    AddThreadsOption(command, options->threads);
    command.SetDescription(
        "Exit code: 0 as expected, 3 not as expected, 4 undecided or nothing could be compared, 1 the "
        "work failed, 2 the command line is wrong.");
    command.AddExample("tessel render clip.tessel -o clip.mov && tessel verify clip.tessel clip.mov",
                       "A clip and what became of it");
    command.AddExample("tessel verify --list", "All checks");
    command.OnRun([options, &context] { RunVerify(*options, context); });
}

} // namespace tessel::cli
