#include "DamagePlan.h"

#include "catalogue/FaultValue.h"

#include <limits>
#include <numeric>

namespace tessel::damage {

void ChangeRate(DamagePlan& plan, std::int64_t numerator, std::int64_t denominator)
{
    const std::int64_t divisor = std::gcd(numerator, denominator);
    constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
    if (divisor == 0 || numerator / divisor > kMost || denominator / divisor > kMost) {
        throw FaultError("the clip's rate cannot be changed so: the new one is no fraction of 32-bit numbers");
    }
    plan.described.timeScale = static_cast<std::int32_t>(numerator / divisor);
    plan.described.sampleSize = static_cast<std::int32_t>(denominator / divisor);
    plan.announcements.emplace_back(
        [scale = plan.described.timeScale, size = plan.described.sampleSize](exporting::OutputPlan& output) {
            if (output.video) {
                output.video->geometry.rateNumerator = scale;
                output.video->geometry.rateDenominator = size;
            }
        });
}

} // namespace tessel::damage
