/// The command line of `tessel thumbnail`.

#include "MovieCommands.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>

#include <climits>
#include <memory>

namespace tessel::cli {

void AddThumbnailCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<ThumbnailOptions>();
    const Command command =
        commandLine.AddHiddenCommand("thumbnail", "Make a small picture of a clip, for file managers");
    command.AddOption("clip", options->clip, "The clip").Required().ValueName("CLIP");
    command.AddOption("output", options->output, "The PNG file to write").Required().ValueName("OUT");
    command.AddNumber("size", options->size, 16, INT_MAX, "Pixels of its longer side, at most 2048")
        .ShowDefault()
        .ValueName("SIZE");
    command.OnRun([options, &context] { RunThumbnail(*options, context); });
}

} // namespace tessel::cli
