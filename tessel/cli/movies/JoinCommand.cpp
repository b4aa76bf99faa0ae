/// The command line of `tessel join`.

#include "MovieCommands.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>

#include <memory>

namespace tessel::cli {

void AddJoinCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<JoinOptions>();
    const Command command =
        commandLine.AddCommand("join", "Put parts that were rendered apart into one file, without loss");
    command.AddOption("CLIP", options->clip, "The clip that the parts are of")
        .Required()
        .TakesFile(FileKind::Clip);
    command
        .AddOption(
            "PART", options->parts,
            "Files of 'tessel render --part', in any order; of sequences their names with a number, as in "
            "out/%06d.exr")
        .Required()
        .TakesFile(FileKind::Any);
    command.SetDescription(
        "Copies the coded pictures, and renders the sound beside them: the file is the one that a single "
        "render "
        "would have written. A part that is missing, short or there twice, of another document or of other "
        "options is refused.\n"
        "Give join the options that render had, and the timecode. Parts that do not say which they are (Y4M, "
        "files of --from and --to) are taken in the order given. Pictures of a sequence are copied; without -o "
        "join looks whether all are there and whole.");
    command.StartGroup("Output");
    command.AddOption("-o,--output", options->output, "File to write, or - for standard output")
        .ValueName("OUT")
        .TakesFile(FileKind::Any);
    AddTimecodeOption(command, options->timecode);
    AddOutputOptions(command, options->out);
    AddRunOptions(command, options->how);
    command.AddExample(
        "tessel render clip.tessel --part 1/2 -o a.mkv && tessel render clip.tessel --part 2/2 -o "
        "b.mkv && tessel join clip.tessel a.mkv b.mkv -o clip.mkv",
        "Two halves, as two machines may render them, and the movie");
    command.AddExample("tessel render clip.tessel -o out/%06d.png && tessel join clip.tessel out/%06d.png",
                       "Check that every picture is there");
    command.OnRun([options, &context] { RunJoin(*options, context); });
}

} // namespace tessel::cli
