#include "FrameSaving.h"

#include <kestrel/importhost/PathText.h>
#include <kestrel/qelcore/text/LetterCase.h>
#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/ExportError.h>
#include <tessel/export/Render.h>
#include <tessel/export/plan/Container.h>

#include <algorithm>
#include <string>

namespace tessel::view {

void SaveFrameAs(const exporting::SignalSource& clip, std::int64_t frame, const std::filesystem::path& file)
{
    const std::string ending = qelcore::text::LowerCase(qelcore::text::UTF8Text(file.extension()));
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
    std::string name = qelcore::text::UTF8Text(file.filename());
    const bool hasPercentSign = name.find('%') != std::string::npos;
    if (hasPercentSign) {
        std::replace(name.begin(), name.end(), '%', '_');
        job.target = file.parent_path() / qelcore::text::PathOf('.' + name);
    }
    static_cast<void>(exporting::Render(clip, job));
    if (hasPercentSign) {
        std::filesystem::rename(job.target, file);
    }
}

} // namespace tessel::view
