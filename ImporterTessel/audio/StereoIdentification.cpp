#include "StereoIdentification.h"

#include "SegmentWalk.h"
#include "SineSpan.h"

#include <kestrel/qelaccelerate/Vector.h>
#include <kestrel/qelmediatypes/TickTime.h>

#include <cstdint>
#include <span>

namespace ImporterTessel {
namespace {

constexpr std::int32_t kLeft = 0;
constexpr std::int32_t kRight = 1;
constexpr float kStereoLevel = 0.125F;

/// 3 s = 12 × 0.25 s
constexpr PatternGrid kGrid{{qelmediatypes::kTicksPerSecond / 4}, 12};
constexpr std::int32_t kSilentUnit = 11;

/// The tone's eleven units are one stretch.
constexpr std::int32_t EndOfStretch(std::int32_t unit) noexcept
{
    return unit < kSilentUnit ? kSilentUnit : kGrid.unitCount;
}

} // namespace

void SynthesizeStereoIdentification(const AudioRequest& request, float frequency) noexcept
{
    const Tone tone{frequency, kStereoLevel};
    FillSineSpan(request.rate, request.start, tone, request.Samples(kRight));
    WalkSegments(request, kGrid, EndOfStretch, [&](const Segment& segment) {
        const std::span<float> left = request.Samples(kLeft, segment.offset, segment.length);
        if (segment.unit == kSilentUnit) {
            qelaccelerate::utility::Zero(left.size(), left.data());
        } else {
            FillSineSpan(request.rate, segment.start, tone, left);
        }
    });
}

} // namespace ImporterTessel
