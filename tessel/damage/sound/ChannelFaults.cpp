#include "ChannelFaults.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::damage {
namespace {

constexpr float kMinus3Decibels = 0.70710678F;

float FactorOf(double decibels) noexcept
{
    return static_cast<float>(std::pow(10.0, decibels / 20));
}

template <class Change>
ChannelFault EachSample(Change change)
{
    return [change](Moment& moment, std::int64_t) {
        std::transform(moment.begin(), moment.end(), moment.begin(), change);
    };
}

/// Uniform in -1..1, from SplitMix64's finalizer over position and channel.
double NoiseAt(std::int64_t position, std::size_t channel) noexcept
{
    std::uint64_t bits =
        static_cast<std::uint64_t>(position) * 0x9E3779B97F4A7C15U + (channel + 1) * 0xD1B54A32D192ED03U;
    bits = (bits ^ bits >> 30U) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ bits >> 27U) * 0x94D049BB133111EBU;
    bits ^= bits >> 31U;
    return static_cast<double>(bits >> 11U) / static_cast<double>(1ULL << 52U) - 1;
}

} // namespace

ChannelFault SwapChannels(std::size_t first, std::size_t second)
{
    return [=](Moment& moment, std::int64_t) {
        if (std::max(first, second) < moment.size()) {
            std::swap(moment[first], moment[second]);
        }
    };
}

ChannelFault InvertChannel(std::size_t channel)
{
    return [=](Moment& moment, std::int64_t) {
        if (channel < moment.size()) {
            moment[channel] = -moment[channel];
        }
    };
}

ChannelFault SilenceChannel(std::size_t channel)
{
    return [=](Moment& moment, std::int64_t) {
        if (channel < moment.size()) {
            moment[channel] = 0.0F;
        }
    };
}

ChannelFault MultiplyByDecibels(double decibels)
{
    return EachSample([factor = FactorOf(decibels)](float sample) { return sample * factor; });
}

ChannelFault ClipAt(double decibels)
{
    return EachSample([limit = FactorOf(decibels)](float sample) { return std::clamp(sample, -limit, limit); });
}

ChannelFault AddConstant(double level)
{
    return EachSample([constant = static_cast<float>(level)](float sample) { return sample + constant; });
}

ChannelFault AddNoise(double decibels)
{
    // The RMS of uniform noise in -1..1 is 1 / sqrt(3).
    const double scale = std::pow(10.0, decibels / 20) * std::sqrt(3.0);
    return [scale](Moment& moment, std::int64_t position) {
        for (std::size_t channel = 0; channel < moment.size(); ++channel) {
            moment[channel] += static_cast<float>(scale * NoiseAt(position, channel));
        }
    };
}

ChannelFault BendThirdHarmonic(double percent)
{
    // x - b x^3 turns a tone of amplitude A into one with a third harmonic of b A^3 / 4.
    constexpr double kAmplitude = 0.125;
    const double bend = 4 * percent / 100 / (kAmplitude * kAmplitude);
    return EachSample([bend](float sample) {
        const double x = sample;
        return static_cast<float>(x - bend * x * x * x);
    });
}

ChannelFault TruncateTo(int bits)
{
    const double steps = std::exp2(bits - 1);
    return EachSample([steps](float sample) {
        return static_cast<float>(std::floor(static_cast<double>(sample) * steps) / steps);
    });
}

ChannelFault DownMix()
{
    return [](Moment& moment, std::int64_t) {
        if (moment.size() >= 6) {
            const float left = moment[0] + kMinus3Decibels * (moment[4] + moment[2]);
            const float right = moment[1] + kMinus3Decibels * (moment[4] + moment[3]);
            moment = {left, right};
        } else if (moment.size() >= 2) {
            moment = {(moment[0] + moment[1]) / 2};
        }
    };
}

ChannelFault UpMix()
{
    return [](Moment& moment, std::int64_t) {
        if (moment.size() == 1) {
            moment = {moment[0] * kMinus3Decibels, moment[0] * kMinus3Decibels};
        } else if (moment.size() == 2) {
            const float left = moment[0];
            const float right = moment[1];
            moment = {left,
                      right,
                      left * kMinus3Decibels,
                      right * kMinus3Decibels,
                      (left + right) / 2 * kMinus3Decibels,
                      0.0F};
        }
    };
}

ChannelFault KeepChannels(std::size_t count)
{
    return [count](Moment& moment, std::int64_t) { moment.resize(count, 0.0F); };
}

} // namespace tessel::damage
