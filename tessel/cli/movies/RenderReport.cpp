#include "RenderReport.h"

#include <tessel/cli/Commands.h>
#include <tessel/export/plan/PlanText.h>

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace tessel::cli {
namespace {

/// What was written, as what, how large and how fast.
std::string ClosingLine(const FinishedFile& file, const exporting::OutputPlan& plan,
                        const importhost::ClipDescription& clip)
{
    std::string line = file.name + ": ";
    if (plan.video) {
        line += fmt::format("{} of {}", CountedFrames(file.frames), exporting::DescribeVideo(*plan.video));
    }
    if (plan.audio) {
        line += (plan.video ? "; " : "") + exporting::DescribeAudio(*plan.audio);
    }
    if (!plan.container->takesEveryCodec) {
        line += fmt::format("; {:.1f} MB", static_cast<double>(file.bytes) / 1e6);
    }
    const double clipSeconds = static_cast<double>(file.frames) * clip.sampleSize / clip.timeScale;
    const double least = std::max(file.seconds, 1e-6);
    return line + fmt::format("; {:.1f} s, {:.1f} frames a second, {:.2f} times real time", file.seconds,
                              static_cast<double>(file.frames) / least, clipSeconds / least);
}

} // namespace

std::string Announcement(const std::string& name, const exporting::OutputPlan& plan, const std::string& what)
{
    std::string text = fmt::format("{}: {}, {}\n", name, plan.container->name, what);
    const auto add = [&text](std::string_view key, std::string_view value) {
        text += fmt::format("  {:<10}{}\n", key, value);
    };
    if (plan.video) {
        add("picture", exporting::DescribeVideo(*plan.video));
        add("tags", exporting::DescribeTags(*plan.video));
    }
    if (plan.timecode) {
        add("timecode", plan.timecode->After(0));
    }
    if (plan.audio) {
        add("sound", exporting::DescribeAudio(*plan.audio));
    }
    for (const std::string& loss : exporting::LossesOf(plan)) {
        add("not said", loss);
    }
    return text;
}

std::string CountedFrames(std::int64_t frames)
{
    return fmt::format("{} {}", frames, frames == 1 ? "frame" : "frames");
}

void ReportFinished(const FinishedFile& file, const exporting::OutputPlan& plan,
                    const importhost::ClipDescription& clip)
{
    for (const std::string& loss : exporting::LossesOf(plan)) {
        WriteNote(
            fmt::format("{}: {} files do not say this of the clip: {}", file.name, plan.container->name, loss));
    }
    WriteNote(ClosingLine(file, plan, clip));
}

} // namespace tessel::cli
