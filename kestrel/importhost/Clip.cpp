#include "ClipState.h"
#include "HostError.h"
#include "LegacySuite.h"
#include "PathText.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace importhost {
namespace {

/// The identification patterns write up to six channels, whatever a clip's channel count is.
constexpr std::size_t kFewestAudioBuffers = 6;

/// What is wrong with a frame that was asked for; nothing where it is as described.
std::optional<ClipFailure> FailureOf(const RenderedFrame& rendered, const ClipDescription& description)
{
    ClipFailure failure;
    failure.result = rendered.result;
    if (rendered.result == ksResultServed && rendered.frame != nullptr) {
        const FrameLayout& layout = rendered.frame->Layout();
        if (layout.width == description.width && layout.height == description.height) {
            return std::nullopt;
        }
        failure.cause = FailureCause::WrongFrameSize;
        failure.frameWidth = layout.width;
        failure.frameHeight = layout.height;
        return failure;
    }
    failure.refusal = rendered.refusal;
    if (rendered.refusal != FrameRefusal::None) {
        failure.cause = FailureCause::FrameRefused;
    } else if (rendered.result == ksResultServed) {
        failure.cause = rendered.isForeign ? FailureCause::ForeignFrame : FailureCause::NoFrame;
    }
    return failure;
}

} // namespace

FieldOrder ClipDescription::Order() const noexcept
{
    if (fieldType == 0) {
        return FieldOrder::Progressive;
    }
    return fieldType == 2 ? FieldOrder::LowerFirst : FieldOrder::UpperFirst;
}

Clip::State::State(std::shared_ptr<const Importer> usedImporter, std::filesystem::path clipFile,
                   FrameFilling filling)
    : importer(std::move(usedImporter)), file(std::move(clipFile)), frames(filling)
{
}

Clip::State::~State()
{
    if (instance != nullptr) {
        (void)importer->Request(ksSelectorDeleteInstance, nullptr, instance);
    }
}

Clip::Clip(std::unique_ptr<State> state) : mState(std::move(state)) {}
Clip::~Clip() = default;
Clip::Clip(Clip&&) noexcept = default;
Clip& Clip::operator=(Clip&&) noexcept = default;

const ClipDescription& Clip::Description() const noexcept
{
    return mState->description;
}

const std::vector<std::string>& Clip::Messages() const noexcept
{
    return mState->messages;
}

void Clip::Learn(ClipKnowledge knowledge)
{
    const TimeScalePair described{mState->description.timeScale, mState->description.sampleSize};
    const bool isRateKnown =
        mState->description.rate.HasFrames() && TimeScaleFromTicks(knowledge.ticksPerFrame) == described;
    mState->rate = isRateKnown ? qelmediatypes::FrameRate{knowledge.ticksPerFrame} : mState->description.rate;
    mState->frames.SetPaintedWhole(knowledge.paintsWholeFrames);
    mState->knowledge = std::move(knowledge);
}

qelmediatypes::FrameRate Clip::Rate() const noexcept
{
    return mState->rate;
}

void Clip::Fail(const std::string& request, const ClipFailure& failure) const
{
    std::optional<std::string> why;
    if (mState->knowledge.explain) {
        why = mState->knowledge.explain(failure);
    }
    throw HostError(DisplayName(mState->file) + ": " + request + ": " +
                    (why ? *why : FailureText(failure, mState->description)));
}

const std::filesystem::path& Clip::File() const noexcept
{
    return mState->file;
}

Frame Clip::RenderFrame(std::int64_t frame, const FrameDestination* destination) const
{
    const qelmediatypes::TickTime time(frame, mState->rate);
    const auto ask = [&](FrameRequest& request, ksFrameHandle& handle) {
        return RequestFrame(*mState->importer, mState->instance, time, request, handle);
    };
    RenderedFrame rendered = mState->frames.Render(ask, destination);
    if (const auto failure = FailureOf(rendered, mState->description)) {
        Fail("frame " + std::to_string(frame), *failure);
    }
    return Frame(std::move(rendered.frame));
}

void Clip::RenderAudio(std::int64_t position, std::uint32_t sampleCount, std::span<float* const> channels) const
{
    const std::int32_t channelCount = mState->description.channelCount;
    const std::string request = "audio from sample " + std::to_string(position);
    if (channelCount > kMostChannels || channels.size() > kMostChannels) {
        Fail(request, {.cause = FailureCause::TooManyChannels});
    }
    if (channelCount > 0 && channels.size() < static_cast<std::size_t>(channelCount)) {
        throw HostError(DisplayName(mState->file) + ": " + std::to_string(channels.size()) +
                        " audio buffers for " + std::to_string(channelCount) + " channels");
    }
    std::array<float*, kMostChannels> buffers{};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        std::fill_n(channels[i], sampleCount, 0.0F);
        buffers[i] = channels[i];
    }
    std::vector<float> padding;
    if (channels.size() < kFewestAudioBuffers) {
        padding.resize((kFewestAudioBuffers - channels.size()) * sampleCount);
        for (std::size_t i = channels.size(); i < kFewestAudioBuffers; ++i) {
            buffers[i] = padding.data() + (i - channels.size()) * sampleCount;
        }
    }
    ksAudioRec record{};
    record.position = position;
    record.sampleCount = sampleCount;
    record.channels = buffers.data();
    record.instance = mState->instance;
    const std::int32_t result = mState->importer->Request(ksSelectorAudio, nullptr, &record);
    if (result != ksResultServed) {
        Fail(request, {.result = result});
    }
}

} // namespace importhost
