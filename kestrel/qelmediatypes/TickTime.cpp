#include "TickTime.h"

#include "Saturating.h"

#include <algorithm>

namespace qelmediatypes {
namespace {

/// How far `ticks` lies behind the frame boundary at or before it: 0 .. ticksPerFrame - 1.
std::int64_t TicksIntoFrame(std::int64_t ticks, FrameRate rate) noexcept
{
    const std::int64_t remainder = ticks % rate.ticksPerFrame;
    return remainder < 0 ? remainder + rate.ticksPerFrame : remainder;
}

} // namespace

FrameRate SampleDuration(float samplesPerSecond) noexcept
{
    if (samplesPerSecond == 0.0F || samplesPerSecond != samplesPerSecond) {
        return FrameRate{};
    }
    // Negative sample rates give negative durations: time then runs backwards over the samples.
    return FrameRate{SaturatingCast<std::int64_t>(static_cast<double>(kTicksPerSecond) / samplesPerSecond)};
}

TickTime::TickTime(std::int64_t frames, FrameRate rate) noexcept
    : mTicks(SaturatingMultiply(frames, rate.ticksPerFrame))
{
}

std::int32_t TickTime::ToFrame32(FrameRate rate) const noexcept
{
    constexpr std::int64_t kLowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t kHighest = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(ToFrame64(rate), kLowest, kHighest));
}

std::int64_t TickTime::ToFrame64(FrameRate rate) const noexcept
{
    if (rate.ticksPerFrame <= 0) {
        return 0;
    }
    const std::int64_t quotient = mTicks / rate.ticksPerFrame;
    return mTicks % rate.ticksPerFrame < 0 ? quotient - 1 : quotient;
}

TickTime TickTime::AddFrames(std::int64_t frames, FrameRate rate) const noexcept
{
    return TickTime(SaturatingMultiplyAdd(frames, rate.ticksPerFrame, mTicks));
}

TickTime TickTime::AlignToFrame(FrameRate rate) const noexcept
{
    if (rate.ticksPerFrame <= 0) {
        return {};
    }
    const std::int64_t behind = TicksIntoFrame(mTicks, rate);
    const std::int64_t ahead = rate.ticksPerFrame - behind;
    return TickTime(ahead <= behind ? SaturatingAdd(mTicks, ahead) : SaturatingSubtract(mTicks, behind));
}

TickTime TickTime::operator+(TickTime other) const noexcept
{
    return TickTime(SaturatingAdd(mTicks, other.mTicks));
}

TickTime TickTime::operator-(TickTime other) const noexcept
{
    return TickTime(SaturatingSubtract(mTicks, other.mTicks));
}

} // namespace qelmediatypes
