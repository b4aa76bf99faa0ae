#include "ClipSound.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <string_view>

namespace tessel::verify::reference {
namespace {

/// The clip's channels in file order: 5.1 clips have L R Ls Rs C LFE, files L R C LFE Ls Rs.
std::vector<std::int32_t> FileOrder(const document::ClipFacts& clip)
{
    if (clip.channelCount == 6 && clip.channelType == 3) {
        return {0, 1, 4, 5, 2, 3};
    }
    std::vector<std::int32_t> order(static_cast<std::size_t>(std::max(clip.channelCount, 0)));
    std::iota(order.begin(), order.end(), 0);
    return order;
}

} // namespace

ClipSound::ClipSound(const exporting::SignalSource& clip)
    : mSampleRate(std::max(1, static_cast<int>(clip.Description().sampleRate))),
      mHostChannels(FileOrder(clip.Description())), mReader(clip, mSampleRate, clip.Description().channelCount)
{
    const document::ClipFacts& facts = clip.Description();
    if (facts.timeScale > 0 && facts.sampleSize > 0) {
        mLength = exporting::FrameStartSample(facts.frameCount, facts.timeScale, facts.sampleSize, mSampleRate);
    }
}

void ClipSound::Read(std::int64_t position, std::int64_t count, Samples& samples)
{
    samples.assign(mHostChannels.size(), std::vector<float>(static_cast<std::size_t>(count), 0.0F));
    const std::int64_t end = std::min(position + count, mLength);
    for (std::int64_t at = std::max<std::int64_t>(position, 0); at < end;) {
        const std::int64_t got = mReader.Read(at, end - at);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const float* from = mReader.Channel(mHostChannels[i]);
            std::copy(from, from + got, samples[i].begin() + (at - position));
        }
        at += got;
    }
}

std::string ChannelName(int channel, int channels)
{
    constexpr std::array<std::string_view, 6> kSurround{"L", "R", "C", "LFE", "Ls", "Rs"};
    if (channels == 1) {
        return "mono";
    }
    if ((channels == 2 && channel < 2) || (channels == 6 && channel < 6)) {
        return std::string(kSurround[static_cast<std::size_t>(channel)]);
    }
    return fmt::format("channel {}", channel + 1);
}

} // namespace tessel::verify::reference
