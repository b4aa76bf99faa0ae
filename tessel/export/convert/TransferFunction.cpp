#include "TransferFunction.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tessel::exporting {
namespace {

float Within(float sample, float limit) noexcept
{
    return std::isnan(sample) ? 0.0F : std::clamp(sample, -limit, limit);
}

} // namespace

void MakeFinite(float* samples, std::int32_t count) noexcept
{
    constexpr float kFarOutside = 10000.0F;
    for (std::int32_t i = 0; i < count; ++i) {
        samples[i] = Within(samples[i], kFarOutside);
    }
}

void MakeFiniteWithHeadroom(float* samples, std::int32_t count) noexcept
{
    for (std::int32_t i = 0; i < count; ++i) {
        samples[i] = Within(samples[i], std::numeric_limits<float>::max()) / kMatrixHeadroom;
    }
}

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
