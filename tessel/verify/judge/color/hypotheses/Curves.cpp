#include "Curves.h"

#include <cmath>

namespace tessel::verify::judge::curves {

double SignalOf709(double light) noexcept
{
    return light < kBeta ? 4.5 * light : kAlpha * std::pow(light, 0.45) - (kAlpha - 1);
}

double LightOf709(double signal) noexcept
{
    return signal < 4.5 * kBeta ? signal / 4.5 : std::pow((signal + kAlpha - 1) / kAlpha, 1 / 0.45);
}

double SignalOfSrgb(double light) noexcept
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

double LightOfSrgb(double signal) noexcept
{
    return signal <= 0.04045 ? signal / 12.92 : std::pow((signal + 0.055) / 1.055, 2.4);
}

double SignalOf22(double light) noexcept
{
    return std::pow(light, 1 / 2.2);
}

double LightOf22(double signal) noexcept
{
    return std::pow(signal, 2.2);
}

double SignalOf24(double light) noexcept
{
    return std::pow(light, 1 / 2.4);
}

double LightOf24(double signal) noexcept
{
    return std::pow(signal, 2.4);
}

} // namespace tessel::verify::judge::curves
