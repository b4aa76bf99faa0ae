/// `tessel thumbnail`: a clip as a small picture. File managers call it, people hardly ever do.

#include "Commands.h"
#include "movies/MovieCommands.h"

#include <kestrel/importhost/HostError.h>
#include <kestrel/importhost/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/thumbnail/TextCard.h>
#include <tessel/thumbnail/Thumbnail.h>

#include <string>

namespace tessel::cli {
namespace {

/// What is wrong, without the file's name, which the file manager shows below the picture.
std::string WithoutName(const std::string& line, const std::filesystem::path& clip)
{
    const std::string name = importhost::DisplayName(clip) + ": ";
    return line.compare(0, name.size(), name) == 0 ? line.substr(name.size()) : line;
}

/// A clip that cannot be painted still has a picture: of the reason. A sandbox that shows this program the
/// document alone hides the files that a swatch chart names.
thumbnail::Image Picture(const ThumbnailOptions& options, Context& context)
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

} // namespace

void RunThumbnail(const ThumbnailOptions& options, Context& context)
{
    if (options.size > 2048) {
        throw UsageError("a thumbnail is at most 2048 pixels wide, not " + std::to_string(options.size));
    }
    // Without a plug-in there are no pictures of anything: that is a fault of the installation.
    static_cast<void>(context.LoadImporter());
    thumbnail::WritePng(Picture(options, context), options.output);
}

} // namespace tessel::cli
