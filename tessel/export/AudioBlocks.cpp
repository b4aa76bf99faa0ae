#include "AudioBlocks.h"

#include <algorithm>

namespace tessel::exporting {

std::int64_t AudioBlockSize(std::int32_t sampleRate) noexcept
{
    constexpr std::int64_t kMostTenths = 20; // 2 s
    for (std::int64_t tenths = 1; tenths <= kMostTenths; ++tenths) {
        if (sampleRate * tenths % 10 == 0) {
            return sampleRate * tenths / 10;
        }
    }
    return sampleRate;
}

std::int64_t FrameStartSample(std::int64_t frame, std::int32_t rateNumerator, std::int32_t rateDenominator,
                              std::int32_t sampleRate) noexcept
{
    // frame × denominator × rate needs more than 64 bits for long clips at odd rates: whole seconds apart.
    const std::int64_t units = frame * rateDenominator;
    const std::int64_t seconds = units / rateNumerator;
    const std::int64_t rest = units % rateNumerator;
    return seconds * sampleRate + (2 * rest * sampleRate + rateNumerator) / (2 * std::int64_t{rateNumerator});
}

AudioBlockReader::AudioBlockReader(const SignalSource& source, std::int32_t sampleRate,
                                   std::int32_t channelCount)
    : mSource(source), mBlockSize(AudioBlockSize(sampleRate)),
      mChannels(static_cast<std::size_t>(channelCount),
                std::vector<float>(static_cast<std::size_t>(mBlockSize)))
{
    for (std::vector<float>& channel : mChannels) {
        mPointers.push_back(channel.data());
    }
}

std::int64_t AudioBlockReader::Read(std::int64_t position, std::int64_t count)
{
    const std::int64_t block = position / mBlockSize;
    if (block != mBlock) {
        mBlock = -1; // none, where this fails half way
        mSource.RenderAudio(block * mBlockSize, static_cast<std::uint32_t>(mBlockSize), mPointers);
        mBlock = block;
    }
    mOffset = position % mBlockSize;
    return std::min(count, mBlockSize - mOffset);
}

const float* AudioBlockReader::Channel(std::int32_t channel) const noexcept
{
    return mChannels[static_cast<std::size_t>(channel)].data() + mOffset;
}

} // namespace tessel::exporting
