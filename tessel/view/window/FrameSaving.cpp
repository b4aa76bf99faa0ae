#include "FrameSaving.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/Container.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace tessel::view {

void SaveFrameAs(const exporting::SignalSource& clip, std::int64_t frame, const std::filesystem::path& file)
{
    std::string ending = qelcore::text::UTF8Text(file.extension());
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    if (ending != ".png" && ending != ".exr") {
        throw exporting::ExportError(importhost::DisplayName(file) +
                                     ": a frame is saved as .png or .exr: give the file one of these endings");
    }
    exporting::RenderJob job;
    job.output.container = exporting::ContainerNamed(ending.substr(1));
    job.output.streams = exporting::Streams::VideoOnly;
    job.target = file;
    job.frames = {.first = frame, .count = 1};
    // Where rendering would read a percent sign as the place of a number, the file gets its name afterwards.
    const bool hasPercentSign = file.filename().native().find('%') != std::string::npos;
    if (hasPercentSign) {
        std::string name = '.' + file.filename().native();
        std::replace(name.begin(), name.end(), '%', '_');
        job.target = file.parent_path() / name;
    }
    static_cast<void>(exporting::Render(clip, job));
    if (hasPercentSign) {
        std::filesystem::rename(job.target, file);
    }
}

} // namespace tessel::view
