/// Which frame is due: playing, stepping, and the count of frames that were dropped.
#pragma once

#include <cstdint>

namespace tessel::view {

enum class Pace : std::uint8_t {
    RealTime,   ///< the clip's own rate; what is not ready in time is dropped, and counted
    EveryFrame, ///< no frame is left out; never faster than the clip's rate
};

/// Time is whatever clock the caller reads, in seconds, never running backwards. Threads: one object, one
/// thread.
class Transport {
public:
    static constexpr int kFastest = 8;

    /// @param framesPerSecond  0: not known; then 25 are played
    Transport(std::int64_t frameCount, double framesPerSecond);

    /// Plays forwards; each further call doubles the speed, up to `kFastest`. Backwards likewise. @{
    void Forward(double now);
    void Backward(double now);
    /// @}
    void Stop(double now);
    /// Plays forwards at normal speed, or stops. At the clip's end it begins again.
    void Toggle(double now);
    /// Goes to a frame, kept inside the clip. Playing goes on from there.
    void Go(std::int64_t frame, double now);
    /// Stops and goes some frames on, or back.
    void Step(std::int64_t frames, double now);

    void SetPace(Pace pace, double now);
    void SetLooping(bool isLooping) noexcept { mIsLooping = isLooping; }
    [[nodiscard]] bool IsLooping() const noexcept { return mIsLooping; }
    [[nodiscard]] Pace CurrentPace() const noexcept { return mPace; }

    /// The clip changed. Goes on where it was, as far as the new clip has that frame.
    void SetClip(std::int64_t frameCount, double framesPerSecond, double now);

    /// The frame to show now. Stops at the clip's ends, unless it plays in a loop.
    [[nodiscard]] std::int64_t Due(double now);
    /// Whether the second half of the due frame's time has begun: when its second field is shown.
    [[nodiscard]] bool IsInSecondHalf(double now) const noexcept;

    /// The frame that comes `later` frames after another one in the direction of playing, whatever the speed;
    /// -1 beyond the ends.
    [[nodiscard]] std::int64_t Following(std::int64_t frame, int later) const noexcept;

    /// How many frames ago `frame` was due, if `due` is due now; large for one that is still to come.
    [[nodiscard]] std::int64_t Lateness(std::int64_t frame, std::int64_t due) const noexcept;

    /// Frames that pass in so many seconds at the current speed.
    [[nodiscard]] double FramesIn(double seconds) const noexcept;

    /// A frame has been put on the screen. Frames between it and the one before count as dropped while it plays
    /// at normal speed.
    void Showed(std::int64_t frame, double now);

    /// 0: stopped; 1: normal; -2: twice as fast, backwards.
    [[nodiscard]] int Speed() const noexcept { return mSpeed; }
    /// Since playing began. @{
    [[nodiscard]] std::int64_t Dropped() const noexcept { return mDropped; }
    [[nodiscard]] std::int64_t Shown() const noexcept { return mShown; }
    /// @}

private:
    [[nodiscard]] double Elapsed(double now) const noexcept
    {
        return (now - mSince) * mFramesPerSecond * mSpeed;
    }
    void Start(int speed, double now);
    void Anchor(std::int64_t frame, double now) noexcept;

    std::int64_t mCount;
    double mFramesPerSecond;
    Pace mPace = Pace::RealTime;
    bool mIsLooping = false;
    int mSpeed = 0;
    std::int64_t mFrom = 0;       ///< the frame at `mSince`
    double mSince = 0;            ///< when playing began or changed
    std::int64_t mLastShown = -1; ///< since playing began
    double mShownAt = 0;
    std::int64_t mDropped = 0;
    std::int64_t mShown = 0;
};

} // namespace tessel::view
