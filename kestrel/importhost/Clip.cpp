#include "ClipState.h"
#include "FrameFailure.h"
#include "HostError.h"
#include "LegacySuite.h"
#include "PathText.h"

#include <kestrel/importabi/ResultCodes.h>
#include <kestrel/importabi/Selectors.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace importhost {
namespace {

/// The identification patterns write up to six channels, whatever a clip's channel count is.
constexpr std::size_t kFewestAudioBuffers = 6;
constexpr std::size_t kMostChannels = 64;

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

const std::string& Clip::Warning() const noexcept
{
    return mState->warning;
}

const std::optional<std::string>& Clip::SettingsText() const noexcept
{
    return mState->settingsText;
}

const std::filesystem::path& Clip::File() const noexcept
{
    return mState->file;
}

Frame Clip::RenderFrame(std::int64_t frame) const
{
    const qelmediatypes::TickTime time(frame, mState->description.rate);
    RenderedFrame rendered = mState->frames.Render([&](FrameRequest& request, ksFrameHandle& handle) {
        ksFrameRec record{};
        record.instance = mState->instance;
        record.time = time.Ticks();
        record.frame = &handle;
        const auto token = request.Token();
        static_assert(sizeof record.extra16 == sizeof token);
        std::memcpy(record.extra16, token.data(), token.size());
        return mState->importer->Request(ksSelectorFrame, nullptr, &record);
    });
    if (rendered.result != ksResultServed || rendered.frame == nullptr) {
        throw HostError(DisplayName(mState->file) + ": frame " + std::to_string(frame) + ": " +
                        FrameFailureText(rendered, mState->description, mState->keys));
    }
    return Frame(std::move(rendered.frame));
}

void Clip::RenderAudio(std::int64_t position, std::uint32_t sampleCount, std::span<float* const> channels) const
{
    const std::int32_t channelCount = mState->description.channelCount;
    if (channelCount > static_cast<std::int32_t>(kMostChannels) || channels.size() > kMostChannels) {
        throw HostError(DisplayName(mState->file) + ": \"mNumChannels\": " + std::to_string(channelCount) +
                        " audio channels, at most " + std::to_string(kMostChannels) + " can be played");
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
        throw HostError(DisplayName(mState->file) + ": audio from sample " + std::to_string(position) +
                        ": the plug-in failed (result " + std::to_string(result) + ")");
    }
}

} // namespace importhost
