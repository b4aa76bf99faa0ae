/// The sine generator of every signal.
#pragma once

#include <kestrel/qelmediatypes/TickTime.h>

#include <cstdint>
#include <span>

namespace ImporterTessel {

enum class SpanShape : std::uint8_t {
    Sine,
    ConstantLevel ///< every sample is the amplitude itself
};

/// A sine's settings, as a clip's record has them.
struct Tone {
    float frequency = 0.0F; ///< hertz; any float
    float amplitude = 0.0F; ///< linear peak factor; any float
};

/// Two pi, rounded to float, so 1.75e-7 too large. Intended: the exact value would change the samples of long
/// spans. The cost: the end of a span and the start of one that begins there differ by up to
/// amplitude × 1.75e-7 × cycles of the first span.
inline constexpr double kTwoPi = static_cast<double>(6.28318530717958647692F);
static_assert(kTwoPi == 6.2831854820251465);

/// Samples per second of a rate: kTicksPerSecond / ticks per sample in double precision, 0 for the unusable
/// rate, an infinity for a rate of zero ticks.
[[nodiscard]] double SamplesPerSecond(qelmediatypes::FrameRate rate) noexcept;

/// Fills `samples` with `tone` as it sounds from `start` on.
///
/// The phase at the start follows from the absolute number of the first sample, so spans may be asked for in
/// any order and join; inside a span it is accumulated in double precision and never wrapped. A rate without
/// samples gives a meaningless signal (for a sample rate of 0: NaN) but nothing worse.
///
/// @param rate   Ticks per sample; any.
/// @param start  Time of the first sample; any.
/// Threads: [any-thread]. Never allocates. Cost: about a nanosecond a sample; where a phase passes
/// `kLargestVectorPhase`, that of the C library's sine.
void FillSineSpan(qelmediatypes::FrameRate rate, qelmediatypes::TickTime start, Tone tone,
                  std::span<float> samples, SpanShape shape = SpanShape::Sine) noexcept;

} // namespace ImporterTessel
