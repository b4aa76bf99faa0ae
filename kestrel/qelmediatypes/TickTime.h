/// Times and rates in the host's ticks, 254016000000 to the second: a number that the usual frame and
/// sample rates divide.
#pragma once

#include <kestrel/Export.h>

#include <compare>
#include <cstdint>
#include <limits>

namespace qelmediatypes {

inline constexpr std::int64_t kTicksPerSecond = 254'016'000'000;

/// Ticks per frame, or per audio sample. A clip at a rate of 0 or less, or at the unusable one, cannot be
/// played.
struct FrameRate {
    /// Stands for a rate that cannot be had, for instance from a time scale of zero.
    static constexpr std::int64_t kUnusableTicks = std::numeric_limits<std::int64_t>::max();

    std::int64_t ticksPerFrame = kUnusableTicks;

    /// Whether a clip can be played at this rate.
    [[nodiscard]] constexpr bool HasFrames() const noexcept
    {
        return ticksPerFrame > 0 && ticksPerFrame != kUnusableTicks;
    }
    auto operator<=>(const FrameRate&) const = default;
};

/// Ticks per sample of a sample rate: kTicksPerSecond / `samplesPerSecond` in double precision, truncated
/// toward zero and saturated to 64 bits; the unusable rate for exactly 0 and for NaN.
[[nodiscard]] KESTREL_API FrameRate SampleDuration(float samplesPerSecond) noexcept;

/// A point in time or a span, in ticks. All arithmetic saturates at the ends of 64 bits; nothing traps.
/// Threads: [any-thread].
class KESTREL_API TickTime {
public:
    constexpr TickTime() noexcept = default;
    constexpr explicit TickTime(std::int64_t ticks) noexcept : mTicks(ticks) {}
    /// `frames` × the rate's ticks per frame.
    TickTime(std::int64_t frames, FrameRate rate) noexcept;

    [[nodiscard]] constexpr std::int64_t Ticks() const noexcept { return mTicks; }

    /// Whole frames up to this time, rounded toward minus infinity and saturated; 0 for a rate of 0 or less.
    /// The unusable rate counts as the ticks that it is: one frame at that rate is one frame. @{
    [[nodiscard]] std::int32_t ToFrame32(FrameRate rate) const noexcept;
    [[nodiscard]] std::int64_t ToFrame64(FrameRate rate) const noexcept;
    /// @}

    /// This time advanced by `frames` frames; `frames` may be negative.
    [[nodiscard]] TickTime AddFrames(std::int64_t frames, FrameRate rate) const noexcept;

    /// The nearest frame boundary, the later one when two are equally near; zero for a rate of 0 or less.
    [[nodiscard]] TickTime AlignToFrame(FrameRate rate) const noexcept;

    [[nodiscard]] TickTime operator+(TickTime other) const noexcept;
    [[nodiscard]] TickTime operator-(TickTime other) const noexcept;
    auto operator<=>(const TickTime&) const = default;

private:
    std::int64_t mTicks = 0;
};

} // namespace qelmediatypes
