#include "DamagedSound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace tessel::damage {
namespace {

/// Samples on each side of a place between two: enough that a tone of 2 kHz at 48 kHz keeps its shape to -120
/// dB.
constexpr std::int64_t kReach = 48;

using Kernel = std::array<double, 2 * kReach>;

/// What the samples around a place weigh, from `kReach` - 1 before the one at or left of it: a sinc in a
/// Blackman window. @param fraction  how far the place is behind that sample, 0 excluded and 1 as well
Kernel KernelAt(double fraction) noexcept
{
    constexpr double kPi = std::numbers::pi;
    // The angles of whole samples in the window; those of the fraction are added by the addition theorem, so
    // that a sample of the file takes three sines and cosines instead of some hundreds.
    static const auto kTurns = [] {
        std::array<std::pair<double, double>, 2 * kReach> turns;
        for (std::size_t i = 0; i < turns.size(); ++i) {
            const double angle = kPi * (static_cast<double>(kReach - 1) - static_cast<double>(i)) / kReach;
            turns[i] = {std::cos(angle), std::sin(angle)};
        }
        return turns;
    }();
    const double cosine = std::cos(kPi * fraction / kReach);
    const double sine = std::sin(kPi * fraction / kReach);
    const double wave = std::sin(kPi * fraction);
    Kernel kernel;
    for (std::size_t i = 0; i < kernel.size(); ++i) {
        const double distance = fraction + static_cast<double>(kReach - 1) - static_cast<double>(i);
        const double turned = cosine * kTurns[i].first - sine * kTurns[i].second;
        const double window = 0.42 + 0.5 * turned + 0.08 * (2 * turned * turned - 1);
        // sin(pi * distance) changes its sign from sample to sample; at i = kReach - 1 it is that of the
        // fraction.
        const double sign = (i % 2 == 0) == ((kReach - 1) % 2 == 0) ? 1 : -1;
        kernel[i] = sign * wave / (kPi * distance) * window;
    }
    return kernel;
}

} // namespace

DamagedSource::DamagedSource(const exporting::SignalSource& clean, const DamagePlan& plan)
    : mClean(clean), mPlan(plan),
      mReader(clean, std::max(static_cast<std::int32_t>(plan.facts.sampleRate), 1), plan.facts.channelCount),
      mStart(exporting::FrameStartSample(plan.frames.first, plan.facts.timeScale, plan.facts.sampleSize,
                                         std::max(static_cast<std::int32_t>(plan.facts.sampleRate), 1)))
{
}

void DamagedSource::ReadWindow(std::int64_t first, std::int64_t last) const
{
    const std::int64_t begin = std::max<std::int64_t>(first, 0); // before the clip there is silence
    mWindow.first = begin;
    mWindow.channels.assign(static_cast<std::size_t>(mPlan.facts.channelCount), {});
    for (std::int64_t position = begin; position <= last;) {
        const std::int64_t count = mReader.Read(position, last + 1 - position);
        for (std::size_t i = 0; i < mWindow.channels.size(); ++i) {
            const float* const samples = mReader.Channel(static_cast<std::int32_t>(i));
            mWindow.channels[i].insert(mWindow.channels[i].end(), samples, samples + count);
        }
        position += count;
    }
}

void DamagedSource::ReadMoment(double position, Moment& moment) const noexcept
{
    const double whole = std::floor(position);
    const std::int64_t base = static_cast<std::int64_t>(whole) - mWindow.first;
    const Kernel kernel = position == whole ? Kernel() : KernelAt(position - whole);
    for (std::size_t channel = 0; channel < moment.size(); ++channel) {
        const std::vector<float>& samples = mWindow.channels[channel];
        const auto at = [&](std::int64_t index) {
            return index >= 0 && index < static_cast<std::int64_t>(samples.size())
                       ? samples[static_cast<std::size_t>(index)]
                       : 0.0F;
        };
        if (position == whole) {
            moment[channel] = at(base);
            continue;
        }
        double sum = 0;
        for (std::int64_t i = 0; i < 2 * kReach; ++i) {
            sum += static_cast<double>(at(base - kReach + 1 + i)) * kernel[static_cast<std::size_t>(i)];
        }
        moment[channel] = static_cast<float>(sum);
    }
}

void DamagedSource::RenderAudio(std::int64_t position, std::uint32_t sampleCount,
                                std::span<float* const> channels) const
{
    const std::lock_guard lock(mMutex);
    std::vector<std::optional<double>> places(sampleCount);
    std::optional<std::pair<double, double>> span;
    for (std::uint32_t i = 0; i < sampleCount; ++i) {
        std::optional<double> place = mPlan.soundTime.ClipPositionOf(position + i);
        if (place) {
            *place += static_cast<double>(mStart);
        }
        places[i] = place;
        if (place) {
            span = span ? std::pair(std::min(span->first, *place), std::max(span->second, *place))
                        : std::pair(*place, *place);
        }
    }
    if (span) {
        ReadWindow(static_cast<std::int64_t>(span->first) - kReach,
                   static_cast<std::int64_t>(span->second) + kReach + 1);
    }
    Moment moment;
    for (std::uint32_t i = 0; i < sampleCount; ++i) {
        moment.assign(static_cast<std::size_t>(mPlan.facts.channelCount), 0.0F);
        if (places[i]) {
            ReadMoment(*places[i], moment);
        }
        for (const ChannelFault& fault : mPlan.channels) {
            fault(moment, position + i);
        }
        for (std::size_t channel = 0; channel < channels.size(); ++channel) {
            channels[channel][i] = channel < moment.size() ? moment[channel] : 0.0F;
        }
    }
}

} // namespace tessel::damage
