/// What a render tells beside its file.
#pragma once

#include "FrameHashes.h"
#include "MovieCommands.h"
#include "TruthTable.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/Render.h>
#include <tessel/export/files/OutputFile.h>
#include <tessel/export/plan/OutputPlan.h>

#include <optional>

namespace tessel::cli {

/// Hashes, a comparison with earlier ones, the truth of each picture: `--hash`, `--verify`, `--truth`.
class Witnesses {
public:
    /// @param output  the file that is rendered; empty or "-": none of that name
    /// @throws UsageError  for several clips, and where a file would replace the clip or another file of the
    /// render
    static void Check(const RenderOptions& options, const std::filesystem::path& output);

    /// Starts the files, so that a place that takes none ends the work before it begins.
    /// @throws exporting::ExportError, importhost::HostError
    explicit Witnesses(const RenderOptions& options);

    /// What the render has to record; null where the options ask for no record. Called once.
    /// @param plan, clip  borrowed while this lives
    /// @throws exporting::ExportError  where the plan lacks what the options ask to record
    [[nodiscard]] const exporting::RenderRecord*
    Watch(const exporting::OutputPlan& plan, const document::OpenedClip& clip, exporting::FrameRange frames);

    /// Writes the files of a render that has succeeded.
    void Commit();

private:
    void Compare(const exporting::OutputPlan& plan);

    exporting::RenderRecord mRecord;
    std::optional<ExpectedHashes> mExpected;
    std::optional<exporting::OutputFile> mHashFile;
    std::optional<exporting::OutputFile> mTruthFile;
    std::optional<FrameHashes> mHashes;
    std::optional<TruthTable> mTruth;
};

} // namespace tessel::cli
