#include "DamagedSound.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

namespace tessel::damage {
namespace {

/// Samples on each side of a place between two: enough that a tone of 2 kHz at 48 kHz keeps its shape to -120
/// dB.
constexpr std::int64_t kReach = 48;

/// A sinc in a Blackman window.
double Kernel(double distance) noexcept
{
    constexpr double kPi = std::numbers::pi;
    const double part = distance / static_cast<double>(kReach);
    if (std::abs(part) >= 1) {
        return 0;
    }
    const double window = 0.42 + 0.5 * std::cos(kPi * part) + 0.08 * std::cos(2 * kPi * part);
    return distance == 0 ? 1 : std::sin(kPi * distance) / (kPi * distance) * window;
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

float DamagedSource::SampleAt(std::size_t channel, double position) const noexcept
{
    const std::vector<float>& samples = mWindow.channels[channel];
    const auto at = [&](std::int64_t clipPosition) {
        const std::int64_t index = clipPosition - mWindow.first;
        return index >= 0 && index < static_cast<std::int64_t>(samples.size())
                   ? samples[static_cast<std::size_t>(index)]
                   : 0.0F;
    };
    const double whole = std::floor(position);
    const auto base = static_cast<std::int64_t>(whole);
    if (position == whole) {
        return at(base);
    }
    double sum = 0;
    for (std::int64_t i = base - kReach + 1; i <= base + kReach; ++i) {
        sum += static_cast<double>(at(i)) * Kernel(position - static_cast<double>(i));
    }
    return static_cast<float>(sum);
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
        for (std::size_t channel = 0; places[i] && channel < moment.size(); ++channel) {
            moment[channel] = SampleAt(channel, *places[i]);
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
