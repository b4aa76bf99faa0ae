/// What commands that write files say of them.
#pragma once

#include <tessel/document/OpenClip.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <string>

namespace tessel::cli {

/// What a dry run prints about a file: several lines, each with its newline.
/// @param what  of the clip goes into the file: "10 frames"
[[nodiscard]] std::string Announcement(const std::string& name, const exporting::OutputPlan& plan,
                                       const std::string& what);

/// "1 frame", "250 frames"
[[nodiscard]] std::string CountedFrames(std::int64_t frames);

/// A file that is written.
struct FinishedFile {
    std::string name;
    std::int64_t frames = 0;
    std::int64_t bytes = 0;
    double seconds = 0.0; ///< that the work took
};

/// Writes a line for each fact of the clip that the file does not hold, and one that says what was written, as
/// what, how large and how fast.
void ReportFinished(const FinishedFile& file, const exporting::OutputPlan& plan,
                    const importhost::ClipDescription& clip);

} // namespace tessel::cli
