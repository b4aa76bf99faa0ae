/// Transfer functions.
#pragma once

#include <string_view>

namespace tessel::verify::judge {

/// A transfer function and its inverse, for values of 0 and more.
struct Curve {
    std::string_view name;
    double (*toSignal)(double) noexcept;
    double (*toLight)(double) noexcept;
};

namespace curves {

// BT.709-6 with the constants that make its pieces meet.
inline constexpr double kAlpha = 1.09929682680944;
inline constexpr double kBeta = 0.018053968510807;

double SignalOf709(double light) noexcept;
double LightOf709(double signal) noexcept;
double SignalOfSrgb(double light) noexcept;
double LightOfSrgb(double signal) noexcept;
double SignalOf22(double light) noexcept;
double LightOf22(double signal) noexcept;
double SignalOf24(double light) noexcept;
double LightOf24(double signal) noexcept;

} // namespace curves

inline constexpr Curve kCurves[] = {{"BT.709", curves::SignalOf709, curves::LightOf709},
                                    {"sRGB", curves::SignalOfSrgb, curves::LightOfSrgb},
                                    {"gamma 2.2", curves::SignalOf22, curves::LightOf22},
                                    {"gamma 2.4", curves::SignalOf24, curves::LightOf24}};

} // namespace tessel::verify::judge
