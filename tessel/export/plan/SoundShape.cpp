#include "SoundShape.h"

#include <kestrel/importhost/ClipFailure.h>

#include <cmath>
#include <numeric>

namespace tessel::exporting {
namespace {

constexpr std::int32_t kChannelType51 = 3;

/// Files count samples per second in whole numbers.
std::int32_t WholeSampleRate(float rate) noexcept
{
    constexpr float kHighest = 16'777'216.0F; // the last float below which every integer is one
    const bool isWhole = rate >= 1.0F && rate <= kHighest && rate == std::floor(rate);
    return isWhole ? static_cast<std::int32_t>(rate) : 0;
}

} // namespace

SoundShape SoundShapeOf(const document::ClipFacts& clip)
{
    SoundShape shape;
    shape.sampleRate = WholeSampleRate(clip.sampleRate);
    if (clip.channelCount < 1 || clip.channelCount > importhost::kMostChannels) {
        return shape;
    }
    shape.hostChannels.resize(static_cast<std::size_t>(clip.channelCount));
    std::iota(shape.hostChannels.begin(), shape.hostChannels.end(), 0);
    if (clip.channelCount == 6 && clip.channelType == kChannelType51) {
        // The host's 5.1 order is L R Ls Rs C LFE, that of files is L R C LFE Ls Rs.
        shape.hostChannels = {0, 1, 4, 5, 2, 3};
        shape.layout = SpeakerLayout::Surround51;
    } else if (clip.channelCount <= 2) {
        shape.layout = clip.channelCount == 1 ? SpeakerLayout::Mono : SpeakerLayout::Stereo;
    }
    return shape;
}

} // namespace tessel::exporting
