/// Sequences: pictures are looked for, and copied where they are to be together.

#include "ExportError.h"
#include "Join.h"

#include <kestrel/qelcore/text/PathText.h>
#include <tessel/export/encode/PictureFile.h>
#include <tessel/export/files/SequenceWriter.h>
#include <tessel/export/files/WholeFile.h>

#include <fmt/format.h>

#include <system_error>
#include <utility>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;

/// The pictures of a sequence by the numbers of their frames.
class NumberedFiles {
public:
    explicit NumberedFiles(const fs::path& sequence) : mFolder(sequence.parent_path())
    {
        std::optional<NumberedName> name = NumberedName::Parse(qelcore::text::UTF8Text(sequence.filename()));
        if (!name) {
            throw ExportError(
                fmt::format("{} is one picture; a sequence has a number in its name, as in %06d{}",
                            QuotedName(sequence), qelcore::text::UTF8Text(sequence.extension())));
        }
        mName = *std::move(name);
    }

    [[nodiscard]] fs::path FileOf(std::int64_t frame) const
    {
        return mFolder / qelcore::text::PathOf(mName.With(frame));
    }

private:
    fs::path mFolder;
    NumberedName mName;
};

/// The one file with the picture of a frame.
fs::path FindPicture(const std::vector<NumberedFiles>& sequences, const FrameRange& frames, std::int64_t frame)
{
    fs::path found;
    for (const NumberedFiles& files : sequences) {
        std::error_code ignored;
        const fs::path file = files.FileOf(frame);
        if (!fs::exists(file, ignored)) {
            continue;
        }
        if (!found.empty()) {
            throw ExportError(fmt::format("frame {} is there twice, as {} and {}: remove one of them", frame,
                                          QuotedName(found), QuotedName(file)));
        }
        found = file;
    }
    if (found.empty()) {
        throw ExportError(fmt::format("the picture of frame {} of {} to {} is missing: there is no {}", frame,
                                      frames.first, frames.Last(),
                                      QuotedName(sequences.front().FileOf(frame))));
    }
    return found;
}

} // namespace

std::int64_t JoinSequence(const std::vector<fs::path>& sequences, const RenderJob& job, const OutputPlan& plan)
{
    const std::vector<NumberedFiles> files(sequences.begin(), sequences.end());
    // First all names: a picture that is missing is said before the others are read.
    std::vector<fs::path> pictures;
    for (std::int64_t index = 0; index < job.frames.count; ++index) {
        pictures.push_back(FindPicture(files, job.frames, job.frames.first + index));
    }
    std::optional<SequenceWriter> writer;
    if (!job.target.empty()) {
        writer.emplace(job.target, job.frames.count);
    }
    PictureFileCheck check(*plan.video);
    std::int64_t size = 0;
    for (std::int64_t index = 0; index < job.frames.count; ++index) {
        const fs::path& path = pictures[static_cast<std::size_t>(index)];
        const std::vector<std::byte> file = ReadFileBytes(path);
        if (const std::string problem = check.ProblemOf(file); !problem.empty()) {
            throw ExportError(fmt::format("{} {}: render the frame again", QuotedName(path), problem));
        }
        if (writer) {
            writer->Write(file, job.frames.first + index);
        }
        size += static_cast<std::int64_t>(file.size());
        ReportProgress(job.progress, index + 1, job.frames.count, "frames");
    }
    if (writer) {
        writer->Finish();
    }
    return size;
}

} // namespace tessel::exporting
