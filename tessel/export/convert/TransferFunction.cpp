#include "TransferFunction.h"

#include <cmath>

namespace tessel::exporting {
void ApplyBt709Transfer(float* samples, std::int32_t count) noexcept
{
    constexpr double kAlpha = 1.09929682680944;
    constexpr double kBeta = 0.018053968510807;
    for (std::int32_t i = 0; i < count; ++i) {
        const double linear = std::abs(static_cast<double>(samples[i]));
        const double coded = linear < kBeta ? 4.5 * linear : kAlpha * std::pow(linear, 0.45) - (kAlpha - 1.0);
        samples[i] = static_cast<float>(std::copysign(coded, static_cast<double>(samples[i])));
    }
}

} // namespace tessel::exporting
