#include "RenderDamaged.h"

#include "catalogue/Fault.h"
#include "sound/DamagedSound.h"

#include <kestrel/qelcore/serialization/Json.h>
#include <tessel/export/AskedSource.h>
#include <tessel/export/ExportError.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <utility>

namespace tessel::damage {
namespace {

using exporting::OutputPlan;
using exporting::Picture;
using exporting::PictureLayout;
using qelcore::serialization::Array;
using qelcore::serialization::Object;
using qelcore::serialization::Value;

constexpr std::array kWithoutAlpha = std::to_array<std::pair<PictureLayout, PictureLayout>>({
    {PictureLayout::Bgra, PictureLayout::Bgr0},
    {PictureLayout::Argb, PictureLayout::Zrgb},
    {PictureLayout::Rgba, PictureLayout::Rgb24},
    {PictureLayout::Rgba64, PictureLayout::Rgb48},
    {PictureLayout::Rgba64be, PictureLayout::Rgb48be},
    {PictureLayout::Gbrap16, PictureLayout::Gbrp16},
    {PictureLayout::Gbrapf32, PictureLayout::Gbrpf32},
    {PictureLayout::Yuva444p, PictureLayout::Yuv444p},
    {PictureLayout::Yuva444p10, PictureLayout::Yuv444p10},
    {PictureLayout::Yuva444p16, PictureLayout::Yuv444p16},
});

void DropAlpha(exporting::VideoPlan& video)
{
    const auto* const row = std::find_if(kWithoutAlpha.begin(), kWithoutAlpha.end(), [&](const auto& pair) {
        return pair.first == video.conversion.target;
    });
    if (row == kWithoutAlpha.end()) {
        throw FaultError("--fault container.alpha: the file has no alpha anyway");
    }
    video.conversion.target = row->second;
}

/// Uniform noise over the whole picture, a function of the position alone.
void FillWithNoise(WorkPicture& picture, std::int64_t position)
{
    std::uint64_t state = static_cast<std::uint64_t>(position) + 1;
    for (std::size_t component = 0; component < 3; ++component) {
        const float center = picture.IsYCbCr() && component > 0 ? 0.0F : 0.5F;
        for (float& sample : picture.planes[component].samples) {
            state = state * 6364136223846793005U + 1442695040888963407U; // Knuth's MMIX generator
            sample = center + static_cast<float>(state >> 40U) / static_cast<float>(1U << 24U) - 0.5F;
        }
    }
}

/// Makes the pictures of the file. Threads: [any-thread], each with a source of clean pictures of its own.
class PictureMaker {
public:
    PictureMaker(const DamagePlan& plan, const exporting::YCbCrCoding& coding,
                 const std::function<Picture(std::int64_t frame)>& clean)
        : mPlan(plan), mCoding(coding), mClean(clean)
    {
    }

    [[nodiscard]] Picture Make(std::int64_t position) const
    {
        const OrderedPicture& ordered = OrderedAt(position);
        if (mPlan.pictures.empty() && ordered.kind == OrderedPicture::Kind::Frame) {
            return mClean(ordered.frame);
        }
        return Store(After(mPlan.pictures.size(), position));
    }

private:
    [[nodiscard]] const OrderedPicture& OrderedAt(std::int64_t position) const
    {
        const std::vector<OrderedPicture>& pictures = mPlan.order.Pictures();
        const auto last = static_cast<std::int64_t>(pictures.size()) - 1;
        return pictures[static_cast<std::size_t>(std::clamp<std::int64_t>(position, 0, last))];
    }

    /// The picture as the first `faultCount` faults leave it.
    [[nodiscard]] WorkPicture After(std::size_t faultCount, std::int64_t position) const
    {
        if (faultCount > 0) {
            return mPlan.pictures[faultCount - 1]([&](std::int64_t at) { return After(faultCount - 1, at); },
                                                  position);
        }
        const OrderedPicture& ordered = OrderedAt(position);
        WorkPicture picture = Load(mClean(ordered.frame), mCoding);
        if (ordered.kind == OrderedPicture::Kind::Black) {
            return BlackLike(picture, picture.width, picture.height);
        }
        if (ordered.kind == OrderedPicture::Kind::Noise) {
            FillWithNoise(picture, position);
        }
        return picture;
    }

    const DamagePlan& mPlan;
    const exporting::YCbCrCoding mCoding;
    const std::function<Picture(std::int64_t)>& mClean;
};

/// What the codes of the clean pictures mean, whatever the file announces.
exporting::YCbCrCoding CodingOf(const exporting::VideoPlan& video)
{
    const auto family = exporting::InfoOf(video.conversion.target).family;
    if (family == exporting::ColorFamily::Rgb) {
        return {};
    }
    const exporting::PixelKind source = exporting::KindOf(video.conversion.source);
    // Codes of a Y'CbCr clip are kept: they are made by the format's own matrix, in limited range.
    return source.family == exporting::ColorFamily::YCbCr && source.matrix == video.conversion.coding.matrix
               ? exporting::YCbCrCoding{source.matrix, /*fullRange=*/false}
               : video.conversion.coding;
}

/// Makes the sound's codec that of a fault, where one asks for it. @throws FaultError  where the container does
/// not carry it
void ChooseSoundCodec(const DamagePlan& damage, exporting::OutputRequest& request)
{
    if (damage.soundCodec.empty()) {
        return;
    }
    request.audioCodec = exporting::AudioCodecNamed(damage.soundCodec);
    try {
        exporting::CheckRequest(request);
    } catch (const exporting::ExportError& error) {
        throw FaultError(std::string("--fault container.depth: ") + error.what());
    }
}

OutputPlan PlanDamaged(const DamagePlan& damage, exporting::OutputRequest request)
{
    exporting::CheckRequest(request);
    ChooseSoundCodec(damage, request);
    OutputPlan plan = exporting::PlanOutput(damage.described, request);
    if (damage.dropsAlpha && plan.video) {
        DropAlpha(*plan.video);
    }
    if (plan.audio) {
        plan.audio->startSample =
            exporting::FrameStartSample(damage.startFrames, damage.described.timeScale,
                                        damage.described.sampleSize, plan.audio->sampleRate);
    }
    for (const auto& announce : damage.announcements) {
        announce(plan);
    }
    if (plan.video) {
        // Encoders write the field order into their own headers, too.
        plan.video->options = exporting::OptionsOf(*plan.video);
    }
    return plan;
}

Value SpanOf(const Span& span)
{
    return Value(Array{Value(span.first), Value(span.last)});
}

std::string TruthText(const DamagePlan& damage, const exporting::RenderJob& job)
{
    Array faults;
    for (const Truth& truth : damage.truths) {
        Object fault;
        fault.emplace("id", Value(truth.fault));
        fault.emplace("value", Value(truth.value));
        if (truth.frames) {
            fault.emplace("frames", SpanOf(*truth.frames));
        }
        if (truth.samples) {
            fault.emplace("samples", SpanOf(*truth.samples));
        }
        faults.emplace_back(std::move(fault));
    }
    Object root;
    root.emplace("version", Value(std::int64_t{1}));
    root.emplace("frames", SpanOf({job.frames.first, job.frames.first + job.frames.count - 1}));
    root.emplace("pictures", Value(static_cast<std::int64_t>(damage.order.Pictures().size())));
    root.emplace("faults", Value(std::move(faults)));
    return qelcore::serialization::GetJSONUTF8String(Value(std::move(root)), /*formatted=*/true) + "\n";
}

std::string RenderAsked(const exporting::SignalSource& source, const exporting::RenderJob& job,
                        const std::vector<std::string>& faults)
{
    DamagePlan damage(source.Description(), job.frames);
    for (const std::string& fault : faults) {
        AddFault(damage, fault);
    }
    const DamagedSource damaged(source, damage);
    const OutputPlan plan = PlanDamaged(damage, job.output);

    exporting::Detour detour;
    if (plan.video) {
        detour.picture = [&damage, coding = CodingOf(*plan.video)](
                             std::int64_t position, const std::function<Picture(std::int64_t)>& clean) {
            return PictureMaker(damage, coding, clean).Make(position);
        };
    }
    detour.pictureTime = damage.pictureTime;
    detour.startFrames = damage.startFrames;
    detour.soundTailSamples = damage.soundTailSamples;

    exporting::RenderJob damagedJob = job;
    damagedJob.frames = {0, static_cast<std::int64_t>(damage.order.Pictures().size())};
    exporting::RenderPlanned(damaged, damagedJob, plan, detour);
    return TruthText(damage, job);
}

} // namespace

std::string RenderDamaged(const exporting::SignalSource& source, const exporting::RenderJob& job,
                          const std::vector<std::string>& faults)
{
    if (!exporting::WantsPicture(job.output)) {
        return RenderAsked(source, job, faults);
    }
    exporting::RequirePicture(source.Description());
    return RenderAsked(exporting::AskedSource(source, job.frames.first), job, faults);
}

std::string FaultList()
{
    std::string list;
    for (const Fault& fault : AllFaults()) {
        list += fault.form.empty() ? fmt::format("{}\n", fault.name)
                : fault.usual.empty()
                    ? fmt::format("{}[={}]\n", fault.name, fault.form)
                    : fmt::format("{}[={}]  (without a value: {})\n", fault.name, fault.form, fault.usual);
        list += fmt::format("    {}\n", fault.sentence);
    }
    return list;
}

} // namespace tessel::damage
