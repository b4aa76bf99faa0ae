#include "Transport.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace tessel::view {
namespace {

double UsableRate(double framesPerSecond) noexcept
{
    return framesPerSecond > 0 ? framesPerSecond : 25.0;
}

std::int64_t Modulo(std::int64_t value, std::int64_t count) noexcept
{
    return ((value % count) + count) % count;
}

} // namespace

Transport::Transport(std::int64_t frameCount, double framesPerSecond)
    : mCount(std::max<std::int64_t>(frameCount, 1)), mFramesPerSecond(UsableRate(framesPerSecond))
{
}

void Transport::Anchor(std::int64_t frame, double now) noexcept
{
    mFrom = std::clamp<std::int64_t>(frame, 0, mCount - 1);
    mSince = now;
}

void Transport::Start(int speed, double now)
{
    Anchor(Due(now), now);
    if (mSpeed == 0) {
        mDropped = 0;
        mShown = 0;
        mLastShown = -1;
    }
    mSpeed = speed;
}

void Transport::Forward(double now)
{
    Start(mSpeed > 0 ? std::min(2 * mSpeed, kFastest) : 1, now);
}

void Transport::Backward(double now)
{
    Start(mSpeed < 0 ? std::max(2 * mSpeed, -kFastest) : -1, now);
}

void Transport::Stop(double now)
{
    Anchor(Due(now), now);
    mSpeed = 0;
}

void Transport::Toggle(double now)
{
    if (mSpeed != 0) {
        Stop(now);
        return;
    }
    if (Due(now) == mCount - 1) {
        Anchor(0, now);
    }
    Start(1, now);
}

void Transport::Go(std::int64_t frame, double now)
{
    Anchor(frame, now);
    mLastShown = -1; // what lies between is not dropped
}

void Transport::Step(std::int64_t frames, double now)
{
    Stop(now);
    Go(mFrom + frames, now);
}

void Transport::SetPace(Pace pace, double now)
{
    Anchor(Due(now), now);
    mPace = pace;
}

void Transport::SetClip(std::int64_t frameCount, double framesPerSecond, double now)
{
    const std::int64_t frame = Due(now);
    mCount = std::max<std::int64_t>(frameCount, 1);
    mFramesPerSecond = UsableRate(framesPerSecond);
    Go(frame, now);
}

std::int64_t Transport::Due(double now)
{
    if (mSpeed == 0) {
        return mFrom;
    }
    std::int64_t frame = mFrom;
    if (mPace == Pace::EveryFrame) {
        if (mLastShown >= 0) {
            const bool isTime = (now - mShownAt) * mFramesPerSecond * std::abs(mSpeed) >= 1.0;
            frame = mLastShown + (!isTime ? 0 : mSpeed > 0 ? 1 : -1);
        }
    } else {
        // Toward the frame that it starts from, which is shown for its whole time backwards, too.
        frame += static_cast<std::int64_t>(Elapsed(now));
    }
    if (frame >= 0 && frame < mCount) {
        return frame;
    }
    if (mIsLooping) {
        return Modulo(frame, mCount);
    }
    mSpeed = 0;
    Anchor(frame, now);
    return mFrom;
}

bool Transport::IsInSecondHalf(double now) const noexcept
{
    if (mSpeed == 0) {
        return false;
    }
    if (mPace == Pace::EveryFrame) {
        return (now - mShownAt) * mFramesPerSecond >= 0.5;
    }
    const double elapsed = std::abs(Elapsed(now));
    return elapsed - std::floor(elapsed) >= 0.5;
}

std::int64_t Transport::Following(std::int64_t frame, int later) const noexcept
{
    const std::int64_t next = mSpeed < 0 ? frame - later : frame + later;
    if (next >= 0 && next < mCount) {
        return next;
    }
    return mIsLooping && mSpeed != 0 ? Modulo(next, mCount) : -1;
}

std::int64_t Transport::Lateness(std::int64_t frame, std::int64_t due) const noexcept
{
    const std::int64_t late = mSpeed < 0 ? frame - due : due - frame;
    if (late >= 0) {
        return late;
    }
    return mIsLooping ? late + mCount : std::numeric_limits<std::int64_t>::max();
}

double Transport::FramesIn(double seconds) const noexcept
{
    return seconds * mFramesPerSecond * std::abs(mSpeed);
}

void Transport::Showed(std::int64_t frame, double now)
{
    if (mSpeed == 0 || frame == mLastShown) {
        return;
    }
    if (mLastShown >= 0 && std::abs(mSpeed) == 1 && mPace == Pace::RealTime) {
        std::int64_t step = (frame - mLastShown) * mSpeed;
        if (step < 0 && mIsLooping) {
            step += mCount;
        }
        mDropped += std::max<std::int64_t>(step - 1, 0);
    }
    ++mShown;
    mLastShown = frame;
    mShownAt = now;
}

} // namespace tessel::view
