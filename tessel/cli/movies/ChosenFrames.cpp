/// What of the output options only those need who render.

#include <tessel/cli/OutputOptions.h>
#include <tessel/export/Render.h>

#include <algorithm>
#include <thread>

namespace tessel::cli {

exporting::FrameRange FramesFor(const OutputOptions& options, const document::ClipFacts& clip)
{
    return exporting::ChooseFrames(clip, options.from, options.to, options.frames);
}

int ThreadCount(const OutputOptions& options)
{
    return options.threads > 0 ? options.threads
                               : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

} // namespace tessel::cli
