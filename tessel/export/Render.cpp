#include "Render.h"

#include "AskedSource.h"
#include "ExportError.h"
#include "OrderedPipeline.h"
#include "SoundTrack.h"

#include <tessel/document/SettingHint.h>
#include <tessel/export/convert/FrameConverter.h>
#include <tessel/export/encode/Digests.h>
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

void Report(const RenderJob& job, std::int64_t done, std::int64_t total, const char* unit)
{
    ReportProgress(job.progress, done, total, unit);
}

/// A picture, and the facts that a record needs.
struct MadePicture {
    Picture picture;
    PictureDigests digests;
};

void Tell(const RenderJob& job, std::int64_t index, const PictureDigests& digests)
{
    if (job.record != nullptr && job.record->picture) {
        job.record->picture(index, digests);
    }
}

void TellEnd(const RenderJob& job)
{
    InterruptGuard::ThrowIfRequested();
    if (job.record != nullptr && job.record->beforeCommit) {
        job.record->beforeCommit();
    }
}

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
    /// @param record  may be null
    FrameReader(const SignalSource& source, const VideoPlan& plan, const RenderRecord* record)
        : mSource(source), mConverter(plan.conversion)
    {
        if (record != nullptr && record->digestsCoded) {
            mCodedHasher.emplace(plan, record->algorithm);
        }
        if (record != nullptr && record->digestsPainted) {
            mPaintedHasher.emplace(record->algorithm);
        }
    }

    [[nodiscard]] const MadePicture& Read(std::int64_t frame)
    {
        if (mMade && mSource.Description().isStill) {
            return *mMade;
        }
        FrameView view = mSource.RenderFrame(frame);
        if (!mMade || !IsSameFrame(mFrame, view)) {
            MadePicture made{mConverter.Convert(view), {}};
            made.digests.coded = mCodedHasher ? mCodedHasher->Of(made.picture) : Digest{};
            made.digests.painted = mPaintedHasher ? DigestOf(view, *mPaintedHasher) : Digest{};
            mMade = std::move(made);
            mFrame = std::move(view);
        }
        return *mMade;
    }

private:
    const SignalSource& mSource;
    FrameConverter mConverter;
    std::optional<PictureHasher> mCodedHasher;
    std::optional<Hasher> mPaintedHasher;
    FrameView mFrame; ///< the last one that was converted
    std::optional<MadePicture> mMade;
};

/// Makes the pictures of a file, one after the other; owns a converter. Threads: [any-thread].
class PictureMaker {
public:
    PictureMaker(const SignalSource& source, const RenderJob& job, const OutputPlan& plan, const Detour& detour)
        : mFirst(job.frames.first), mDetour(detour)
    {
        if (detour.picture) {
            // A detour may write into its pictures: each is a new one. Records are for clips as they are.
            mClean = [&source, converter = std::make_shared<FrameConverter>(plan.video->conversion)](
                         std::int64_t frame) { return converter->Convert(source.RenderFrame(frame)); };
        } else {
            mReader = std::make_shared<FrameReader>(source, *plan.video, job.record);
        }
    }

    [[nodiscard]] MadePicture operator()(std::int64_t index) const
    {
        return mReader ? mReader->Read(mFirst + index) : MadePicture{mDetour.picture(index, mClean), {}};
    }

private:
    std::int64_t mFirst;
    const Detour& mDetour;
    Detour::CleanPicture mClean;
    std::shared_ptr<FrameReader> mReader; ///< where there is no detour
};

std::int64_t RenderSoundOnly(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                             const Detour& detour)
{
    SoundTrack sound(source, *plan.audio, job.record, job.frames.first);
    const std::int64_t start = sound.StartOf(job.frames.first);
    const std::int64_t end = std::max(sound.StartOf(job.frames.Last() + 1) + detour.soundTailSamples, start);
    MovieWriter writer(plan, OpenTarget(job.target, *plan.container), job.threadCount, {0, end - start});
    const std::int64_t second = plan.audio->sampleRate;
    for (std::int64_t position = start; position < end; position += second) {
        sound.WriteTo(std::min(position + second, end), writer);
        Report(job, (position - start) / second, (end - start + second - 1) / second, "seconds");
    }
    sound.Finish();
    TellEnd(job);
    return writer.Finish();
}

std::int64_t RenderMovie(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                         const Detour& detour)
{
    std::optional<SoundTrack> sound;
    std::int64_t soundStart = 0;
    std::int64_t soundEnd = 0;
    if (plan.audio) {
        sound.emplace(source, *plan.audio, job.record, job.frames.first);
        soundStart = sound->StartOf(job.frames.first);
        soundEnd = std::max(sound->StartOf(job.frames.Last() + 1) + detour.soundTailSamples, soundStart);
    }
    MovieWriter writer(plan, OpenTarget(job.target, *plan.container), job.threadCount,
                       {job.frames.count, soundEnd - soundStart});
    auto makers = MakersFor<MadePicture>(source, job, [&] { return PictureMaker(source, job, plan, detour); });
    OrderedPipeline<MadePicture> pictures(job.frames.count, std::move(makers), QueueLength(job.threadCount));
    for (std::int64_t index = 0; const std::optional<MadePicture> made = pictures.Take(); ++index) {
        const std::int64_t time = detour.pictureTime ? detour.pictureTime(index) : index;
        writer.WritePicture(made->picture, detour.startFrames + time);
        Tell(job, index, made->digests);
        if (sound) {
            sound->WriteTo(std::min(sound->StartOf(job.frames.first + index + 1), soundEnd), writer);
        }
        Report(job, index + 1, job.frames.count, "frames");
    }
    if (sound) {
        sound->WriteTo(soundEnd, writer);
        sound->Finish();
    }
    TellEnd(job);
    return writer.Finish();
}

using Bytes = std::vector<std::byte>;
using File = std::shared_ptr<const Bytes>;

/// A picture and the file that it became. Pictures that stand still are encoded once by each thread.
struct EncodedPicture {
    MadePicture made;
    File file;
};

/// Picture files are independent of each other, so threads encode them, too.
std::int64_t RenderSequence(const SignalSource& source, const RenderJob& job, const OutputPlan& plan,
                            const Detour& detour)
{
    SequenceWriter writer(job.target, job.frames.count);
    auto makers = MakersFor<EncodedPicture>(source, job, [&] {
        std::shared_ptr<VideoEncoder> encoder = VideoEncoder::Make(*plan.video, /*threadCount=*/1);
        const auto last = std::make_shared<EncodedPicture>();
        return [maker = PictureMaker(source, job, plan, detour), encoder, last](std::int64_t index) {
            MadePicture made = maker(index);
            if (!last->file || !IsSamePicture(last->made.picture, made.picture)) {
                auto file = std::make_shared<Bytes>();
                encoder->Encode(made.picture, index, [&file](const AVPacket& packet) {
                    const auto* bytes = reinterpret_cast<const std::byte*>(packet.data);
                    file->insert(file->end(), bytes, bytes + packet.size);
                });
                last->file = std::move(file);
            }
            last->made = std::move(made);
            return *last;
        };
    });
    std::int64_t size = 0;
    OrderedPipeline<EncodedPicture> pictures(job.frames.count, std::move(makers), QueueLength(job.threadCount));
    for (std::int64_t index = 0; const std::optional<EncodedPicture> encoded = pictures.Take(); ++index) {
        writer.Write(*encoded->file, job.frames.first + index);
        size += static_cast<std::int64_t>(encoded->file->size());
        Tell(job, index, encoded->made.digests);
        Report(job, index + 1, job.frames.count, "frames");
    }
    TellEnd(job);
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
    const auto requireFrame = [clipFrames](std::int64_t frame) {
        if (frame < 0 || frame >= clipFrames) {
            throw RequestError(
                fmt::format("there is no frame {}: the clip has frames 0 to {}", frame, clipFrames - 1));
        }
    };
    range.first = first.value_or(0);
    requireFrame(range.first);
    if (last) {
        requireFrame(*last);
    }
    if (last && *last < range.first) {
        throw RequestError(fmt::format("the last frame, {}, comes before the first, {}", *last, range.first));
    }
    // Compared before anything is added: what is typed may be as large as numbers get.
    if (count && (*count < 1 || *count > clipFrames - range.first)) {
        throw RequestError(fmt::format("there are not {} frames from frame {} on: the clip has frames 0 to {}",
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

void PlannedRender::MarkAsPart(const PartLabel& label, std::int64_t indexInWhole)
{
    mPlan.comment = label.Text();
    mPlan.video->startIndex = indexInWhole;
    mPlan.video->options = OptionsOf(*mPlan.video);
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
