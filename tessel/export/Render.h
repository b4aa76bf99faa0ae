/// From a clip to finished files.
#pragma once

#include "AskedSource.h"
#include "FrameRange.h"
#include "Parts.h"
#include "Progress.h"
#include "RenderRecord.h"
#include "SignalSource.h"

#include <tessel/export/convert/Picture.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace tessel::exporting {

/// @param first  first frame; the clip's first where not given
/// @param last   last frame, included
/// @param count  number of frames; at most one of `last` and `count` is given
/// @throws ExportError   for a clip without a rate or frames
/// @throws RequestError  for frames that the clip does not have
[[nodiscard]] FrameRange ChooseFrames(const document::ClipFacts& clip, std::optional<std::int64_t> first,
                                      std::optional<std::int64_t> last, std::optional<std::int64_t> count);

struct RenderJob {
    OutputRequest output;
    /// `-` is standard output; sequences take a number in the file name.
    std::filesystem::path target;
    FrameRange frames;
    int threadCount = 1;                  ///< for synthesis, conversion and codecs
    ProgressListener* progress = nullptr; ///< may be null
    const RenderRecord* record = nullptr; ///< null: no record
};

/// A render whose plan is made, and can be looked at before it runs. Borrows the source.
class PlannedRender {
public:
    /// Asks the source for the first frame, to learn its format. @throws as `Render`
    PlannedRender(const SignalSource& source, const RenderJob& job);

    [[nodiscard]] const OutputPlan& Plan() const noexcept { return mPlan; }

    /// Receives the facts of each picture and of the samples; null: no record. Borrowed until it has run.
    void Tell(const RenderRecord* record) noexcept { mJob.record = record; }

    /// Makes the file one part of a longer movie: it says so.
    /// @param indexInWhole  of its first picture, counted from the movie's first
    void MarkAsPart(const PartLabel& label, std::int64_t indexInWhole);

    /// As `Render`.
    [[nodiscard]] std::int64_t Run() const;

private:
    const SignalSource* mSource; ///< the caller's, or `mAsked`
    std::unique_ptr<AskedSource> mAsked;
    RenderJob mJob;
    OutputPlan mPlan;
};

/// Renders `job.frames` of `source`, picture and sound of the same span, into `job.target`. The file appears
/// under its name when it is whole; on any failure nothing is left.
/// @return bytes written
/// @throws ExportError, importhost::HostError, Interrupted (while an `InterruptGuard` lives), std::bad_alloc
std::int64_t Render(const SignalSource& source, const RenderJob& job);

/// What is changed on the way into a file; nothing by default.
struct Detour {
    /// The converted picture of any frame of the clip.
    using CleanPicture = std::function<Picture(std::int64_t frame)>;
    /// Makes the file's picture `index`, counted from 0, in the plan's layout and announced size. Called from
    /// many threads, each with a `clean` of its own.
    std::function<Picture(std::int64_t index, const CleanPicture& clean)> picture{};
    /// The time of picture `index` in frame durations, ascending; empty: its index.
    std::function<std::int64_t(std::int64_t index)> pictureTime{};
    std::int64_t startFrames = 0;      ///< time of the file's beginning, in frame durations
    std::int64_t soundTailSamples = 0; ///< sound behind the last picture; negative: it ends before
};

/// The same with a plan made by `PlanOutput`, perhaps changed since, instead of `job.output`. A plan with a
/// picture needs the format of the frames: `AskedSource` knows it.
std::int64_t RenderPlanned(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                           const Detour& detour = {});

} // namespace tessel::exporting
