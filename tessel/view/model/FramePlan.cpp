#include "FramePlan.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tessel::view {
namespace {

constexpr int kMostLead = 50; // frames

/// Frames of which one is made. Multiples of it stay the same frames while the clip goes on.
std::int64_t StrideOf(const Transport& transport, double framesWhileMaking, int threads) noexcept
{
    if (transport.CurrentPace() == Pace::EveryFrame) {
        return 1;
    }
    const std::int64_t speed = std::max(std::abs(transport.Speed()), 1);
    const double overload = framesWhileMaking / (threads * static_cast<double>(speed));
    return speed * std::clamp<std::int64_t>(std::llround(overload), 1, kMostLead);
}

} // namespace

FramePlan PlanFrames(const Transport& transport, std::int64_t due, const MakingPace& pace, int ahead)
{
    const double framesWhileMaking = transport.FramesIn(pace.seconds);
    const std::int64_t stride = StrideOf(transport, framesWhileMaking, std::max(pace.threads, 1));
    // A quarter more than is needed as a rule, because some frames take longer than others.
    const bool isSlow = transport.CurrentPace() == Pace::RealTime && framesWhileMaking >= 1;
    const std::int64_t lead =
        isSlow ? std::min<std::int64_t>(std::llround(1.25 * framesWhileMaking) + 1, kMostLead) : 0;
    FramePlan plan;
    for (std::int64_t later = 0; later <= lead + ahead * stride; ++later) {
        const std::int64_t frame = transport.Following(due, static_cast<int>(later));
        if (frame < 0) {
            break; // the clip's end
        }
        if (frame % stride == 0) {
            (later < lead ? plan.keep : plan.frames).push_back(frame);
        }
    }
    return plan;
}

} // namespace tessel::view
