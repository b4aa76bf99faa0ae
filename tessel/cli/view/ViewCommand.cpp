#include "ViewCommand.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>

#include <memory>

namespace tessel::cli {

void AddViewCommand(CommandLine& commandLine, Context& context)
{
    constexpr double kLongest = 86'400;
    const auto options = std::make_shared<ViewOptions>();
    const Command command = commandLine.AddCommand("view", "Play clips in a window, with scopes and meters");
    command.AddOption("CLIP", options->clips, "The clips, side by side").TakesFile(FileKind::Clip);
    command
        .AddOption("--against", options->against,
                   "Show this movie, made of the first clip, beside it: the movie, what differs, and what "
                   "verify finds")
        .ValueName("MOVIE")
        .TakesFile(FileKind::Any);
    command
        .AddOption("--frame", options->frame,
                   "Begin with this frame: a number, or a timecode as in 00:00:04:12")
        .ValueName("FRAME");
    command.AddChoice("--theme", options->theme, {"dark", "light"}, "How the window looks").ShowDefault();
    command
        .AddOption("--size", options->size,
                   "The window's size, as in 1280x720; where not said, as it was last time")
        .ValueName("WIDTHxHEIGHT");
    command.StartGroup("Without a person");
    command
        .AddOption("--press", options->keys,
                   "Press this key, as in Right, Shift+Right or F; may be given several times")
        .OneEach()
        .ValueName("KEY");
    command.AddOption("--screenshot", options->screenshot, "Write a picture of the window and close it")
        .ValueName("FILE")
        .TakesFile(FileKind::Any);
    command
        .AddSeconds("--play-for", options->playSeconds, 0, kLongest,
                    "Play so long, in a loop, print how many frames were shown and dropped, and close")
        .ValueName("SECONDS");
    command.SetDescription(
        "Keys: Space plays and stops; J, K and L play backwards, stop and play forwards, faster at "
        "each press; arrows step; digits begin a frame number or timecode; E opens the settings; "
        "O marks codes out of range; F changes the field view; S and M show scopes and meters. "
        "With --against, D shows the difference or a wipe, and [ and ] change its gain. The menus name "
        "the others.");
    command.AddExample("tessel view clip.tessel --frame 12 --screenshot window.png",
                       "A picture of the window, without a person");
    command.OnRun([options, &context] { RunView(*options, context); });
}

} // namespace tessel::cli
