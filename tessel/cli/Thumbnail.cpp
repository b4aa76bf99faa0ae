/// `tessel thumbnail`: a clip as a small picture. File managers call it, people hardly ever do.

#include "CommandLine.h"
#include "Commands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/thumbnail/TextCard.h>
#include <tessel/thumbnail/Thumbnail.h>

#include <memory>
#include <string>

namespace tessel::cli {
namespace {

struct Options {
    std::filesystem::path clip;
    std::filesystem::path output;
    int size = 256;
};

/// What is wrong, without the file's name, which the file manager shows below the picture.
std::string WithoutName(const std::string& line, const std::filesystem::path& clip)
{
    const std::string name = importhost::DisplayName(clip) + ": ";
    return line.compare(0, name.size(), name) == 0 ? line.substr(name.size()) : line;
}

/// A clip that cannot be painted still has a picture: of the reason. A sandbox that shows this program the
/// document alone hides the files that a swatch chart names.
thumbnail::Image Picture(const Options& options, Context& context)
{
    const auto card = [&options](const std::exception& error) {
        return thumbnail::TextCard("no picture", WithoutName(error.what(), options.clip), options.size);
    };
    try {
        return thumbnail::ThumbnailOf(context.OpenClip(options.clip), options.size);
    } catch (const importhost::HostError& error) {
        return card(error);
    } catch (const exporting::ExportError& error) {
        return card(error);
    }
}

void RunThumbnail(const Options& options, Context& context)
{
    if (options.size > 2048) {
        throw UsageError("a thumbnail is at most 2048 pixels wide, not " + std::to_string(options.size));
    }
    // Without a plug-in there are no pictures of anything: that is a fault of the installation.
    static_cast<void>(context.LoadImporter());
    thumbnail::WritePng(Picture(options, context), options.output);
}

} // namespace

void AddThumbnailCommand(CommandLine& commandLine, Context& context)
{
    const auto options = std::make_shared<Options>();
    const Command command =
        commandLine.AddHiddenCommand("thumbnail", "Make a small picture of a clip, for file managers");
    command.AddOption("clip", options->clip, "The clip").Required().ValueName("CLIP");
    command.AddOption("output", options->output, "The PNG file to write").Required().ValueName("OUT");
    command.AddNumber("size", options->size, 16, "Pixels of its longer side, at most 2048")
        .ShowDefault()
        .ValueName("SIZE");
    command.OnRun([options, &context] { RunThumbnail(*options, context); });
}

} // namespace tessel::cli
