#include "Render.h"

#include "AskedSource.h"
#include "AudioBlocks.h"
#include "ExportError.h"
#include "OrderedPipeline.h"

#include <tessel/document/SettingHint.h>
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
std::vector<std::function<Result(std::int64_t)>> MakersFor(const SignalSource& source, const RenderJob& job,
                                                           const MakeOne& makeOne)
{
    std::vector<std::function<Result(std::int64_t)>> makers;
    // More threads than pictures would have nothing to do.
    const std::int64_t pictures = source.Description().isStill ? 1 : job.frames.count;
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(job.threadCount, pictures));
    makers.reserve(count);
    while (makers.size() < count) {
        makers.push_back(makeOne());
    }
    return makers;
}

/// Converts a source's frames. Of a clip that stands still it asks for one frame, and of a frame that equals
/// the last one it gives the same picture again. Threads: one object, one thread at a time.
class FrameReader {
public:
    FrameReader(const SignalSource& source, const Conversion& conversion)
        : mSource(source), mConverter(conversion)
    {
    }

    [[nodiscard]] Picture Read(std::int64_t frame)
    {
        if (mPicture && mSource.Description().isStill) {
            return *mPicture;
        }
        FrameView view = mSource.RenderFrame(frame);
        if (!mPicture || !IsSameFrame(mFrame, view)) {
            mPicture = mConverter.Convert(view);
            mFrame = std::move(view);
        }
        return *mPicture;
    }

private:
    const SignalSource& mSource;
    FrameConverter mConverter;
    FrameView mFrame; ///< the last one that was converted
    std::optional<Picture> mPicture;
};

/// Makes the pictures of a file, one after the other; owns a converter. Threads: [any-thread].
class PictureMaker {
public:
    PictureMaker(const SignalSource& source, const RenderJob& job, const OutputPlan& plan, const Detour& detour)
        : mFirst(job.frames.first), mDetour(detour)
    {
        if (detour.picture) {
            // A detour may write into its pictures: each is a new one.
            mClean = [&source, converter = std::make_shared<FrameConverter>(plan.video->conversion)](
                         std::int64_t frame) { return converter->Convert(source.RenderFrame(frame)); };
        } else {
            mClean = [reader = std::make_shared<FrameReader>(source, plan.video->conversion)](
                         std::int64_t frame) { return reader->Read(frame); };
        }
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

/// A container that writes nothing needs no file either.
OutputFile OpenTarget(const std::filesystem::path& target, const Container& container)
{
    return target == "-" || container.takesEveryCodec ? OutputFile(OutputFile::StandardOutput{})
                                                      : OutputFile(target);
}

/// The span's end in samples: the start of frame `frame`.
std::int64_t StartSample(std::int64_t frame, const importhost::ClipDescription& clip, const AudioPlan& plan)
{
    return FrameStartSample(frame, clip.timeScale, clip.sampleSize, plan.sampleRate);
}

std::int64_t RenderSoundOnly(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                             const Detour& detour)
{
    const importhost::ClipDescription& clip = source.Description();
    const std::int64_t start = StartSample(job.frames.first, clip, *plan.audio);
    const std::int64_t end =
        StartSample(job.frames.first + job.frames.count, clip, *plan.audio) + detour.soundTailSamples;
    MovieWriter writer(plan, OpenTarget(job.target, *plan.container), job.threadCount, {0, end - start});
    SoundTrack sound(source, *plan.audio);
    sound.StartAt(start);
    const std::int64_t second = plan.audio->sampleRate;
    for (std::int64_t position = start; position < end; position += second) {
        sound.WriteTo(std::min(position + second, end), writer);
        Report(job, (position - start) / second, (end - start + second - 1) / second, "seconds");
    }
    StopIfInterrupted();
    return writer.Finish();
}

std::int64_t RenderMovie(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                         const Detour& detour)
{
    const importhost::ClipDescription& clip = source.Description();
    std::optional<SoundTrack> sound;
    std::int64_t soundStart = 0;
    std::int64_t soundEnd = 0;
    if (plan.audio) {
        sound.emplace(source, *plan.audio);
        soundStart = StartSample(job.frames.first, clip, *plan.audio);
        sound->StartAt(soundStart);
        soundEnd =
            StartSample(job.frames.first + job.frames.count, clip, *plan.audio) + detour.soundTailSamples;
    }
    MovieWriter writer(plan, OpenTarget(job.target, *plan.container), job.threadCount,
                       {job.frames.count, soundEnd - soundStart});
    auto makers = MakersFor<Picture>(source, job, [&] { return PictureMaker(source, job, plan, detour); });
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
    return writer.Finish();
}

using Bytes = std::vector<std::byte>;
using File = std::shared_ptr<const Bytes>;

/// A picture and the file that it became. Pictures that stand still are encoded once by each thread.
struct EncodedPicture {
    Picture picture;
    File file;
};

/// Picture files are independent of each other, so threads encode them, too.
std::int64_t RenderSequence(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                            const Detour& detour)
{
    SequenceWriter writer(job.target, job.frames.count);
    auto makers = MakersFor<File>(source, job, [&] {
        std::shared_ptr<VideoEncoder> encoder = VideoEncoder::Make(*plan.video, /*threadCount=*/1);
        const auto last = std::make_shared<EncodedPicture>();
        return [maker = PictureMaker(source, job, plan, detour), encoder, last](std::int64_t index) {
            Picture picture = maker(index);
            if (!last->file || !IsSamePicture(last->picture, picture)) {
                auto file = std::make_shared<Bytes>();
                encoder->Encode(picture, index, [&file](const AVPacket& packet) {
                    const auto* bytes = reinterpret_cast<const std::byte*>(packet.data);
                    file->insert(file->end(), bytes, bytes + packet.size);
                });
                *last = {std::move(picture), std::move(file)};
            }
            return last->file;
        };
    });
    std::int64_t size = 0;
    OrderedPipeline<File> files(job.frames.count, std::move(makers), QueueLength(job.threadCount));
    for (std::int64_t index = 0; const std::optional<File> file = files.Take(); ++index) {
        writer.Write(**file, job.frames.first + index);
        size += static_cast<std::int64_t>((*file)->size());
        Report(job, index + 1, job.frames.count, "frames");
    }
    StopIfInterrupted();
    writer.Finish();
    return size;
}

} // namespace

FrameRange ChooseFrames(const document::ClipFacts& clip, std::optional<std::int64_t> first,
                        std::optional<std::int64_t> last, std::optional<std::int64_t> count)
{
    RequireRate(clip); // without one, frames cannot be counted
    const std::int64_t clipFrames = clip.frameCount;
    if (clipFrames < 1) {
        throw ExportError(
            fmt::format("the clip has no frames{}", SettingHint(clip, document::Setting::Duration)));
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

PlannedRender::PlannedRender(const SignalSource& source, const RenderJob& job) : mSource(&source), mJob(job)
{
    CheckRequest(job.output);
    if (WantsPicture(job.output)) {
        RequirePicture(source.Description());
        mAsked = std::make_unique<AskedSource>(source, job.frames.first);
        mSource = mAsked.get();
    }
    mPlan = PlanOutput(mSource->Description(), job.output);
}

std::int64_t PlannedRender::Run() const
{
    return RenderPlanned(*mSource, mJob, mPlan);
}

std::int64_t Render(const SignalSource& source, const RenderJob& job)
{
    return PlannedRender(source, job).Run();
}

std::int64_t RenderPlanned(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                           const Detour& detour)
{
    if (!plan.video) {
        return RenderSoundOnly(source, job, plan, detour);
    }
    if (plan.container->kind == ContainerKind::Sequence) {
        return RenderSequence(source, job, plan, detour);
    }
    return RenderMovie(source, job, plan, detour);
}

} // namespace tessel::exporting
