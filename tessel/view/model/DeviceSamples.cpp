#include "DeviceSamples.h"

#include <tessel/export/AudioBlocks.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

namespace tessel::view {
namespace {

struct Weights {
    float left;
    float right;
};

std::vector<Weights> DownmixOf(std::size_t channels)
{
    constexpr float kHalfPower = 0.7071F;
    if (channels == 6) {
        return {{1, 0}, {0, 1}, {kHalfPower, kHalfPower}, {0, 0}, {kHalfPower, 0}, {0, kHalfPower}};
    }
    // Of channels without known places, odd ones go left and even ones right.
    std::vector<Weights> weights;
    for (std::size_t i = 0; i < channels; ++i) {
        weights.push_back(channels == 1 ? Weights{1, 1} : i % 2 == 0 ? Weights{1, 0} : Weights{0, 1});
    }
    return weights;
}

/// Left and right of all channels, in the first two.
void MixDown(verify::reference::Samples& samples)
{
    const std::vector<Weights> weights = DownmixOf(samples.size());
    const std::size_t count = samples.front().size();
    verify::reference::Samples mixed(2, std::vector<float>(count, 0.0F));
    for (std::size_t from = 0; from < weights.size(); ++from) {
        for (std::size_t i = 0; i < count; ++i) {
            mixed[0][i] += samples[from][i] * weights[from].left;
            mixed[1][i] += samples[from][i] * weights[from].right;
        }
    }
    samples = std::move(mixed);
}

std::byte* Store(float value, DeviceSampleType type, std::byte* at)
{
    // Written so that a NaN is silence.
    value = value > -1.0F ? std::min(value, 1.0F) : value <= -1.0F ? -1.0F : 0.0F;
    if (type == DeviceSampleType::Float32) {
        std::memcpy(at, &value, sizeof value);
        return at + sizeof value;
    }
    const auto code = static_cast<std::int16_t>(std::lround(value * 32767.0F));
    std::memcpy(at, &code, sizeof code);
    return at + sizeof code;
}

} // namespace

std::int64_t SamplesOf(const ViewedClip& clip) noexcept
{
    const FrameScale scale = clip.Scale();
    return scale.rateNumerator > 0
               ? exporting::FrameStartSample(scale.count, scale.rateNumerator, scale.rateDenominator,
                                             static_cast<int>(clip.Facts().sampleRate))
               : 0;
}

DeviceSamples::DeviceSamples(std::shared_ptr<const ViewedClip> clip, const DeviceFormat& format,
                             std::int64_t position, SoundEnd end)
    : mClip(std::move(clip)), mSound(mClip->Source()), mFormat(format), mPosition(position),
      mLoop(end == SoundEnd::Loop ? SamplesOf(*mClip) : 0)
{
}

std::size_t DeviceSamples::Read(std::span<std::byte> out)
{
    const std::size_t frameBytes = mFormat.BytesPerFrame();
    const std::size_t whole = out.size() / frameBytes * frameBytes;
    std::size_t done = 0;
    while (done < whole) {
        auto count = static_cast<std::int64_t>((whole - done) / frameBytes);
        if (mLoop > 0) {
            mPosition %= mLoop;
            count = std::min(count, mLoop - mPosition);
        }
        ReadStretch(count, out.data() + done);
        mPosition += count;
        done += static_cast<std::size_t>(count) * frameBytes;
    }
    return whole;
}

void DeviceSamples::ReadStretch(std::int64_t count, std::byte* out)
{
    const auto channels = static_cast<std::size_t>(mFormat.channels);
    try {
        mSound.Read(mPosition, count, mSamples);
    } catch (const std::exception&) {
        mSamples.assign(static_cast<std::size_t>(mSound.Channels()),
                        std::vector<float>(static_cast<std::size_t>(count), 0.0F));
    }
    if (channels != mSamples.size()) {
        MixDown(mSamples);
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        for (std::size_t channel = 0; channel < channels; ++channel) {
            out = Store(channel < mSamples.size() ? mSamples[channel][i] : 0.0F, mFormat.type, out);
        }
    }
}

} // namespace tessel::view
