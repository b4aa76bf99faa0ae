#include "Render.h"

#include "AskedSource.h"
#include "AudioBlocks.h"
#include "ExportError.h"
#include "OrderedPipeline.h"

#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/encode/MovieWriter.h>
#include <tessel/export/encode/VideoEncoder.h>
#include <tessel/export/files/Interrupt.h>
#include <tessel/export/files/SequenceWriter.h>

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tessel::exporting {
namespace {

void StopIfInterrupted()
{
    if (InterruptGuard::Requested()) {
        throw Interrupted();
    }
}

void Report(const RenderJob& job, std::int64_t done, std::int64_t total, const char* unit)
{
    StopIfInterrupted();
    if (job.progress != nullptr) {
        job.progress->Report(done, total, unit);
    }
}

/// Feeds a writer with the samples of a span.
class SoundTrack {
public:
    SoundTrack(const SignalSource& source, const AudioPlan& plan)
        : mPlan(plan), mReader(source, plan.sampleRate, source.Description().channelCount),
          mChannels(plan.hostChannels.size())
    {
    }

    void StartAt(std::int64_t position) noexcept { mPosition = position; }

    /// Writes up to, not including, `end`.
    void WriteTo(std::int64_t end, MovieWriter& writer)
    {
        while (mPosition < end) {
            const std::int64_t count = mReader.Read(mPosition, end - mPosition);
            for (std::size_t i = 0; i < mChannels.size(); ++i) {
                mChannels[i] = mReader.Channel(mPlan.hostChannels[i]);
            }
            writer.WriteSamples(mChannels, count, mPosition);
            mPosition += count;
        }
    }

private:
    AudioPlan mPlan;
    AudioBlockReader mReader;
    std::vector<const float*> mChannels;
    std::int64_t mPosition = 0;
};

/// Results that wait for their turn: enough that no thread idles, few enough that pictures fit into memory.
std::int64_t QueueLength(int threadCount) noexcept
{
    return threadCount + 2;
}

/// One maker per thread; each owns a converter.
template <class Result, class MakeOne>
std::vector<std::function<Result(std::int64_t)>> MakersFor(const RenderJob& job, const MakeOne& makeOne)
{
    std::vector<std::function<Result(std::int64_t)>> makers;
    // More threads than frames would have nothing to do.
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(job.threadCount, job.frames.count));
    makers.reserve(count);
    while (makers.size() < count) {
        makers.push_back(makeOne());
    }
    return makers;
}

/// Makes the pictures of a file, one after the other; owns a converter. Threads: [any-thread].
class PictureMaker {
public:
    PictureMaker(const SignalSource& source, const RenderJob& job, const OutputPlan& plan, const Detour& detour)
        : mFirst(job.frames.first), mDetour(detour),
          mClean([&source, converter = std::make_shared<FrameConverter>(plan.video->conversion)](
                     std::int64_t frame) { return converter->Convert(source.RenderFrame(frame)); })
    {
    }

    [[nodiscard]] Picture operator()(std::int64_t index) const
    {
        return mDetour.picture ? mDetour.picture(index, mClean) : mClean(mFirst + index);
    }

private:
    std::int64_t mFirst;
    const Detour& mDetour;
    Detour::CleanPicture mClean;
};

OutputFile OpenTarget(const std::filesystem::path& target)
{
    return target == "-" ? OutputFile(OutputFile::StandardOutput{}) : OutputFile(target);
}

/// The span's end in samples: the start of frame `frame`.
std::int64_t StartSample(std::int64_t frame, const importhost::ClipDescription& clip, const AudioPlan& plan)
{
    return FrameStartSample(frame, clip.timeScale, clip.sampleSize, plan.sampleRate);
}

void RenderSoundOnly(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                     const Detour& detour)
{
    const importhost::ClipDescription& clip = source.Description();
    const std::int64_t start = StartSample(job.frames.first, clip, *plan.audio);
    const std::int64_t end =
        StartSample(job.frames.first + job.frames.count, clip, *plan.audio) + detour.soundTailSamples;
    MovieWriter writer(plan, OpenTarget(job.target), job.threadCount);
    SoundTrack sound(source, *plan.audio);
    sound.StartAt(start);
    const std::int64_t second = plan.audio->sampleRate;
    for (std::int64_t position = start; position < end; position += second) {
        sound.WriteTo(std::min(position + second, end), writer);
        Report(job, (position - start) / second, (end - start + second - 1) / second, "seconds");
    }
    StopIfInterrupted();
    writer.Finish();
}

void RenderMovie(const SignalSource& source, const RenderJob& job, const OutputPlan& plan, const Detour& detour)
{
    const importhost::ClipDescription& clip = source.Description();
    MovieWriter writer(plan, OpenTarget(job.target), job.threadCount);
    std::optional<SoundTrack> sound;
    std::int64_t soundEnd = 0;
    if (plan.audio) {
        sound.emplace(source, *plan.audio);
        sound->StartAt(StartSample(job.frames.first, clip, *plan.audio));
        soundEnd =
            StartSample(job.frames.first + job.frames.count, clip, *plan.audio) + detour.soundTailSamples;
    }
    auto makers = MakersFor<Picture>(job, [&] { return PictureMaker(source, job, plan, detour); });
    OrderedPipeline<Picture> pictures(job.frames.count, std::move(makers), QueueLength(job.threadCount));
    for (std::int64_t index = 0; const std::optional<Picture> picture = pictures.Take(); ++index) {
        const std::int64_t time = detour.pictureTime ? detour.pictureTime(index) : index;
        writer.WritePicture(*picture, detour.startFrames + time);
        if (sound) {
            const std::int64_t next = StartSample(job.frames.first + index + 1, clip, *plan.audio);
            sound->WriteTo(std::min(next, soundEnd), writer);
        }
        Report(job, index + 1, job.frames.count, "frames");
    }
    if (sound) {
        sound->WriteTo(soundEnd, writer);
    }
    StopIfInterrupted();
    writer.Finish();
}

using Bytes = std::vector<std::byte>;

/// Picture files are independent of each other, so threads encode them, too.
void RenderSequence(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                    const Detour& detour)
{
    SequenceWriter writer(job.target, job.frames.count);
    auto makers = MakersFor<Bytes>(job, [&] {
        std::shared_ptr<VideoEncoder> encoder = VideoEncoder::Make(*plan.video, /*threadCount=*/1);
        return [maker = PictureMaker(source, job, plan, detour), encoder](std::int64_t index) {
            Bytes file;
            encoder->Encode(maker(index), index, [&file](const AVPacket& packet) {
                const auto* bytes = reinterpret_cast<const std::byte*>(packet.data);
                file.insert(file.end(), bytes, bytes + packet.size);
            });
            return file;
        };
    });
    OrderedPipeline<Bytes> files(job.frames.count, std::move(makers), QueueLength(job.threadCount));
    for (std::int64_t index = 0; const std::optional<Bytes> file = files.Take(); ++index) {
        writer.Write(*file, job.frames.first + index);
        Report(job, index + 1, job.frames.count, "frames");
    }
    StopIfInterrupted();
    writer.Finish();
}

} // namespace

FrameRange ChooseFrames(const importhost::ClipDescription& clip, std::optional<std::int64_t> first,
                        std::optional<std::int64_t> last, std::optional<std::int64_t> count)
{
    RequireRate(clip); // without one, frames cannot be counted
    const std::int64_t clipFrames = clip.frameCount;
    if (clipFrames < 1) {
        throw ExportError("the clip has no frames: mVideoDuration must be at least one frame long");
    }
    FrameRange range;
    range.first = first.value_or(0);
    if (range.first < 0 || range.first >= clipFrames) {
        throw ExportError(
            fmt::format("there is no frame {}: the clip has frames 0 to {}", range.first, clipFrames - 1));
    }
    // Compared before anything is added: what is typed may be as large as numbers get.
    if (last && (*last >= clipFrames || *last < range.first)) {
        throw ExportError(
            fmt::format("--to {} is not among the clip's frames {} to {}", *last, range.first, clipFrames - 1));
    }
    if (count && (*count < 1 || *count > clipFrames - range.first)) {
        throw ExportError(fmt::format("there are not {} frames from frame {} on: the clip has frames 0 to {}",
                                      *count, range.first, clipFrames - 1));
    }
    const std::int64_t end = last ? *last + 1 : range.first + count.value_or(clipFrames - range.first);
    range.count = end - range.first;
    return range;
}

void Render(const SignalSource& source, const RenderJob& job)
{
    CheckRequest(job.output);
    if (!WantsPicture(job.output)) {
        RenderPlanned(source, job, PlanOutput(source.Description(), job.output));
        return;
    }
    RequirePicture(source.Description());
    const AskedSource asked(source, job.frames.first);
    RenderPlanned(asked, job, PlanOutput(asked.Description(), job.output));
}

void RenderPlanned(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                   const Detour& detour)
{
    if (!plan.video) {
        RenderSoundOnly(source, job, plan, detour);
    } else if (plan.container->kind == ContainerKind::Sequence) {
        RenderSequence(source, job, plan, detour);
    } else {
        RenderMovie(source, job, plan, detour);
    }
}

} // namespace tessel::exporting
