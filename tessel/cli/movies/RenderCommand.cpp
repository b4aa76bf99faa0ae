/// The command line of `tessel render`.

#include "MovieCommands.h"

#include <tessel/cli/CommandLine.h>
#include <tessel/cli/Commands.h>

#include <memory>

namespace tessel::cli {

void AddTimecodeOption(const Command& command, std::string& timecode)
{
    command
        .AddOption(
            "--timecode", timecode,
            "Of the file's first picture: 10:00:00:00, or 10:00:00;00 for drop frame; in mov, mxf and mkv")
        .ValueName("TIMECODE");
}

void AddRunOptions(const Command& command, RunOptions& options)
{
    command.StartGroup("How it runs");
    command.AddFlag("--allow-default", options.allowDefault,
                    "Render a document that cannot be read as the default clip");
    command.AddFlag("--dry-run", options.dryRun,
                    "Only say what would be written, and what of the clip the file would not say");
    command.AddFlag("-q,--quiet", options.quiet, "No progress bar and no closing line");
    command.AddFlag("--no-progress", options.noProgress, "No progress bar");
}

void AddRenderCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<RenderOptions>();
    const Command command =
        commandLine.AddCommand("render", "Render clips into movie, sound and picture files");
    command.AddOption("CLIP", options->clips, "Clips to render").Required().TakesFile(FileKind::Clip);
    command.StartGroup("Output");
    command
        .AddOption("-o,--output", options->output,
                   "File to write, or a folder, or - for standard output; sequences take a number, as in "
                   "out/%06d.exr")
        .ValueName("OUT")
        .TakesFile(FileKind::Any);
    AddTimecodeOption(command, options->timecode);
    AddOutputOptions(command, options->out);
    AddRunOptions(command, options->how);
    command.StartGroup("Part of a clip");
    command
        .AddOption("--part", options->part,
                   "Render part K of N, picture alone, for 'tessel join': of the F frames chosen, those from "
                   "(K-1)*F/N up to, not including, K*F/N, both rounded down; K counts from 1")
        .ValueName("K/N");
    command.StartGroup("Proof");
    command.AddOption(
        "--hash", options->hashes,
        "Also write the hashes of the pictures and samples that the encoders get, as ffmpeg's framehash "
        "format has them; - for standard output");
    command.AddOption("--verify", options->verify,
                      "Compare with hashes that were written so; the first difference ends the render");
    command.AddOption(
        "--truth", options->truth,
        "Also write a table in CSV: number, time, timecodes, hash as painted, sample and ident of each "
        "picture; - for standard output");
    command.AddExample("tessel render clip.tessel -o clip.mkv", "Lossless: everything kept");
    command.AddExample("tessel render clip.tessel -o clip.mov", "For an editor");
    command.AddExample("tessel render clip.tessel -o out/%06d.exr --frames 3", "Pictures, float bit for bit");
    command.AddExample("tessel render clip.tessel -o clip.mp4 --video-codec hevc --quality 20",
                       "H.265, with a CRF of 20");
    command.AddExample("tessel render clip.tessel samples/short.tessel -o out/ --format mov",
                       "Several clips into a folder");
    command.AddExample("tessel render clip.tessel -o clip.mxf --dry-run",
                       "What would be written, and what would be lost");
    command.AddExample("tessel render clip.tessel --format null --hash clip.framehash",
                       "Fingerprints of every picture, and no file");
    command.AddExample("tessel render clip.tessel --part 2/5 -o clip.2.mkv", "The second of five parts");
    command.AddExample("tessel render clip.tessel -o clip.mkv --truth clip.csv",
                       "A movie, and what is true of each of its pictures");
    command.OnRun([options, &context] { RunRender(*options, context); });
}

} // namespace tessel::cli
