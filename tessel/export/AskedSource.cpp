#include "AskedSource.h"

#include <utility>

namespace tessel::exporting {

AskedSource::AskedSource(const SignalSource& source, std::int64_t frame)
    : mSource(source), mNumber(frame), mFrame(source.RenderFrame(frame)), mFacts(source.Description())
{
    mFacts.frameFormat = mFrame->format;
}

FrameView AskedSource::RenderFrame(std::int64_t frame) const
{
    if (frame == mNumber) {
        const std::lock_guard lock(mMutex);
        if (std::optional<FrameView> kept = std::exchange(mFrame, std::nullopt)) {
            return *std::move(kept);
        }
    }
    return mSource.RenderFrame(frame);
}

void AskedSource::RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                              std::span<float* const> channels) const
{
    mSource.RenderAudio(position, sampleCount, channels);
}

} // namespace tessel::exporting
