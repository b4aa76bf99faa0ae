/// One clip that becomes one file.
#pragma once

#include "MovieCommands.h"

#include <tessel/document/OpenClip.h>
#include <tessel/export/Progress.h>
#include <tessel/export/Render.h>
#include <tessel/export/SignalSource.h>
#include <tessel/export/plan/OutputPlan.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tessel::cli {

/// What the commands that write a file of a clip have in common: the opened clip, the progress bar, messages.
class FileWork {
public:
    /// Opens the clip.
    /// @param output  "-": standard output; empty: nothing is written
    /// @throws UsageError  where the output is the clip itself; as `Context::OpenClip`
    FileWork(const std::filesystem::path& clip, const std::filesystem::path& output, const RunOptions& how,
             Context& context);
    FileWork(const FileWork&) = delete;
    FileWork& operator=(const FileWork&) = delete;
    ~FileWork() = default;

    [[nodiscard]] const document::OpenedClip& Clip() const noexcept { return mClip; }
    [[nodiscard]] const exporting::ClipSource& Source() const noexcept { return mSource; }
    /// The output's, or the clip's where there is no output with a name.
    [[nodiscard]] const std::string& Name() const noexcept { return mName; }

    /// All but the frames. `request` and this outlive it.
    [[nodiscard]] exporting::RenderJob StartJob(const exporting::OutputRequest& request,
                                                const OutputOptions& options);

    /// SHA-256 of the document's bytes. @throws exporting::ExportError  where it cannot be read
    [[nodiscard]] std::string DocumentDigest() const;

    /// Calls `run`, which gives how many bytes it wrote, and reports what was written, unless that is not
    /// wanted.
    void RunAndReport(const exporting::OutputPlan& plan, std::int64_t frames,
                      const std::function<std::int64_t()>& run);

    /// Calls `work`. A failure that does not begin with the output's name gets the clip's name in front.
    /// @throws UsageError  for a request that the clip cannot fulfil: the command line has to change
    void Do(const std::function<void()>& work) const;

private:
    [[nodiscard]] std::string NamedLine(const std::string& line) const;

    std::filesystem::path mClipFile;
    std::filesystem::path mOutput;
    RunOptions mHow;
    bool mIsFile;
    document::OpenedClip mClip;
    exporting::ClipSource mSource;
    std::string mName;
    std::optional<exporting::ProgressBar> mBar;
};

/// What comes of being told to stop: the program says so and ends by the signal, and nothing unfinished is
/// left.
void RunInterruptibly(const std::function<void()>& work);

} // namespace tessel::cli
