#include "SoundTrack.h"

namespace tessel::exporting {

SoundTrack::SoundTrack(const SignalSource& source, const AudioPlan& plan, const RenderRecord* record,
                       std::int64_t firstFrame)
    : mSource(source), mPlan(plan), mReader(source, plan.sampleRate, source.Description().channelCount),
      mChannels(plan.hostChannels.size()), mPosition(StartOf(firstFrame))
{
    if (record != nullptr && record->sound) {
        mHasher.emplace(plan, record->algorithm, record->sound);
    }
}

std::int64_t SoundTrack::StartOf(std::int64_t frame) const noexcept
{
    const document::ClipFacts& clip = mSource.Description();
    return FrameStartSample(frame, clip.timeScale, clip.sampleSize, mPlan.sampleRate);
}

void SoundTrack::WriteTo(std::int64_t end, MovieWriter& writer)
{
    while (mPosition < end) {
        const std::int64_t count = mReader.Read(mPosition, end - mPosition);
        for (std::size_t i = 0; i < mChannels.size(); ++i) {
            mChannels[i] = mReader.Channel(mPlan.hostChannels[i]);
        }
        writer.WriteSamples(mChannels, count, mPosition);
        if (mHasher) {
            mHasher->Add(mChannels, count, mPosition);
        }
        mPosition += count;
    }
}

void SoundTrack::Finish()
{
    if (mHasher) {
        mHasher->Finish();
    }
}

} // namespace tessel::exporting
