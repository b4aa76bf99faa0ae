#include "Join.h"

#include "ExportError.h"
#include "Parts.h"
#include "SoundTrack.h"

#include <tessel/export/encode/MovieWriter.h>
#include <tessel/export/encode/PartReader.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/WholeFile.h>

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessel::exporting {
namespace {

namespace fs = std::filesystem;

std::string Counted(std::int64_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string FramesText(const FrameRange& frames)
{
    return frames.count == 1 ? fmt::format("frame {}", frames.first)
                             : fmt::format("frames {} to {}", frames.first, frames.Last());
}

struct LabelledPart {
    fs::path path;
    std::optional<PartLabel> label;
    CodedFormat format;
};

LabelledPart ReadHeader(const fs::path& path)
{
    PartReader reader(path);
    return {path, PartLabel::Parse(reader.Comment()), reader.Format()};
}

/// @throws ExportError  where the pictures are coded otherwise than the plan says
void RequireFormat(const LabelledPart& part, const CodedFormat& wanted)
{
    if (!FitTogether(part.format, wanted)) {
        const bool sameText = part.format.Text() == wanted.Text();
        throw ExportError(fmt::format(
            "{} is {}, but the join would be {}{}: give join the options that render had",
            QuotedName(part.path), part.format.Text(), wanted.Text(), sameText ? " of other settings" : ""));
    }
}

/// @throws ExportError  where a part is of something else than what is put together
void RequireSameWork(const LabelledPart& part, const LabelledPart& first, const OutputPlan& plan,
                     const FrameRange& whole, const std::string& document)
{
    const PartLabel& label = *part.label;
    if (label.part.count != first.label->part.count) {
        throw ExportError(fmt::format("{} is part {}, but {} is part {}: render all parts of one division",
                                      QuotedName(part.path), label.part.Text(), QuotedName(first.path),
                                      first.label->part.Text()));
    }
    if (label.document != document) {
        throw ExportError(fmt::format("{} was rendered from another document, or before this one was changed: "
                                      "render the part again",
                                      QuotedName(part.path)));
    }
    if (const std::string wanted = CodedPictureText(*plan.video); label.picture != wanted) {
        throw ExportError(
            fmt::format("{} is {}, but the join would be {}: give join the options that render had",
                        QuotedName(part.path), label.picture, wanted));
    }
    if (const FrameRange frames = FramesOfPart(whole, label.part); label.frames != frames) {
        throw ExportError(fmt::format(
            "{} has {}, but part {} of {} has {}: give join the frames that render had", QuotedName(part.path),
            FramesText(label.frames), label.part.Text(), FramesText(whole), FramesText(frames)));
    }
}

/// @param parts  ordered by number, all of one division @throws ExportError
void RequireEachOnce(const std::vector<LabelledPart>& parts, const FrameRange& whole)
{
    for (std::size_t i = 1; i < parts.size(); ++i) {
        if (parts[i].label->part == parts[i - 1].label->part) {
            throw ExportError(fmt::format("{} and {} are both part {}: give one of them",
                                          QuotedName(parts[i - 1].path), QuotedName(parts[i].path),
                                          parts[i].label->part.Text()));
        }
    }
    const std::int64_t count = parts.front().label->part.count;
    const std::int64_t missing = count - static_cast<std::int64_t>(parts.size());
    std::int64_t number = 1;
    for (const LabelledPart& part : parts) {
        if (part.label->part.number != number) {
            break;
        }
        ++number;
    }
    if (missing > 0) {
        const PartNumber first{number, count};
        throw ExportError(fmt::format("part {} is missing ({}){}", first.Text(),
                                      FramesText(FramesOfPart(whole, first)),
                                      missing == 1 ? "" : fmt::format(", and {} more", missing - 1)));
    }
}

/// Puts pictures, and the sound beside them, into a file.
class Joiner {
public:
    Joiner(const SignalSource& source, const RenderJob& job, const OutputPlan& plan) : mJob(job), mPlan(plan)
    {
        if (plan.audio) {
            mSound.emplace(source, *plan.audio, job.record, job.frames.first);
            mSoundEnd = mSound->StartOf(job.frames.Last() + 1);
        }
        const std::int64_t samples = mSound ? mSoundEnd - mSound->StartOf(job.frames.first) : 0;
        mWriter.emplace(plan, OpenTarget(job.target, *plan.container), job.threadCount,
                        MovieExtent{job.frames.count, samples});
    }

    /// All pictures of a part.
    void Add(const PlacedPart& part)
    {
        PartReader reader(part.path);
        const std::int64_t begin = mIndex;
        while (AVPacket* packet = reader.Next()) {
            if (part.pictures && mIndex - begin == *part.pictures) {
                throw ExportError(fmt::format("{} holds more than its {}: render the part again",
                                              QuotedName(part.path), Counted(*part.pictures, "picture")));
            }
            if (mIndex == mJob.frames.count) {
                throw ExportError(fmt::format("{} holds pictures behind the last of {}: give join the frames "
                                              "and the parts that render had",
                                              QuotedName(part.path), FramesText(mJob.frames)));
            }
            Write(*packet);
        }
        if (part.pictures && mIndex - begin != *part.pictures) {
            throw ExportError(fmt::format("{} ends after {} of its {}: render the part again",
                                          QuotedName(part.path), mIndex - begin,
                                          Counted(*part.pictures, "picture")));
        }
    }

    std::int64_t Finish()
    {
        if (mIndex != mJob.frames.count) {
            throw ExportError(fmt::format("the parts hold {}, but there are {} ({})",
                                          Counted(mIndex, "picture"), Counted(mJob.frames.count, "frame"),
                                          FramesText(mJob.frames)));
        }
        if (mSound) {
            mSound->WriteTo(mSoundEnd, *mWriter);
            mSound->Finish();
        }
        InterruptGuard::ThrowIfRequested();
        return mWriter->Finish();
    }

private:
    void Write(AVPacket& packet)
    {
        if (mPlan.video->rawWriter == RawWriter::Y4m) {
            mWriter->WritePicture(RawPicture(packet, *mPlan.video), mIndex);
        } else {
            mWriter->WritePacket(packet, mIndex);
        }
        ++mIndex;
        if (mSound) {
            mSound->WriteTo(std::min(mSound->StartOf(mJob.frames.first + mIndex), mSoundEnd), *mWriter);
        }
        ReportProgress(mJob.progress, mIndex, mJob.frames.count, "frames");
    }

    const RenderJob& mJob;
    const OutputPlan& mPlan;
    std::optional<SoundTrack> mSound;
    std::int64_t mSoundEnd = 0;
    std::optional<MovieWriter> mWriter;
    std::int64_t mIndex = 0; ///< of the next picture
};

} // namespace

std::vector<PlacedPart> PlaceParts(const std::vector<fs::path>& files, const OutputPlan& plan,
                                   const FrameRange& whole, const std::string& document)
{
    RequireJoinable(plan);
    const CodedFormat wanted = FormatOf(*plan.video);
    std::vector<LabelledPart> parts;
    std::transform(files.begin(), files.end(), std::back_inserter(parts), ReadHeader);
    const auto isLabelled = [](const LabelledPart& part) { return part.label.has_value(); };
    const auto first = std::find_if(parts.begin(), parts.end(), isLabelled);
    const bool areLabelled = first != parts.end();
    for (const LabelledPart& part : parts) {
        if (areLabelled && !part.label) {
            throw ExportError(
                fmt::format("{} does not say which part it is, and {} does: render all with --part",
                            QuotedName(part.path), QuotedName(first->path)));
        }
        if (areLabelled) {
            RequireSameWork(part, *first, plan, whole, document);
        }
        RequireFormat(part, wanted);
    }
    if (areLabelled) {
        std::stable_sort(parts.begin(), parts.end(), [](const LabelledPart& left, const LabelledPart& right) {
            return left.label->part.number < right.label->part.number;
        });
        RequireEachOnce(parts, whole);
    }
    std::vector<PlacedPart> placed;
    std::transform(parts.begin(), parts.end(), std::back_inserter(placed), [](const LabelledPart& part) {
        return PlacedPart{part.path,
                          part.label ? std::optional(part.label->frames.count) : std::optional<std::int64_t>()};
    });
    return placed;
}

std::int64_t JoinMovie(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                       const std::vector<PlacedPart>& parts)
{
    Joiner joiner(source, job, plan);
    for (const PlacedPart& part : parts) {
        joiner.Add(part);
    }
    return joiner.Finish();
}

} // namespace tessel::exporting
