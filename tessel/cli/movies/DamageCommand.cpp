/// The command line of `tessel damage`.

#include "MovieCommands.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>

#include <memory>

namespace tessel::cli {

void AddDamageCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<DamageOptions>();
    const Command command = commandLine.AddCommand(
        "damage", "Render a clip with faults put in on purpose, to test quality control");
    command.AddOption("CLIP", options->clip, "Clip to render").TakesFile(FileKind::Clip);
    command.StartGroup("Faults");
    command
        .AddOption("--fault", options->faults,
                   "A fault to put in, as NAME or NAME=VALUE; several are applied in the order given")
        .ValueName("FAULT");
    command.AddFlag("--list", options->list, "List the faults and their values, and do nothing else");
    command.StartGroup("Output");
    command
        .AddOption("-o,--output", options->output,
                   "File to write, or - for standard output; the truth is written beside it, as OUT.truth.json")
        .ValueName("OUT")
        .TakesFile(FileKind::Any);
    AddOutputOptions(command, options->out);
    command.AddExample("tessel damage clip.tessel --fault order.missing=12 --fault audio.gain=-6 -o bad.mov",
                       "Leaves picture 12 out and lowers the sound by 6 dB");
    command.AddExample("tessel damage --list", "All faults");
    command.OnRun([options, &context] { RunDamage(*options, context); });
}

} // namespace tessel::cli
