/// From R'G'B' to codes, and the closed list of ways in which that goes wrong.
#pragma once

#include <tessel/verify/report/Report.h>

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::verify::judge {

/// Three components: R', G', B' in 0..1, or codes in 8-bit units (a 10-bit code divided by 4).
using Triple = std::array<double, 3>;

/// How codes are made from R'G'B'.
struct Coding {
    bool isRgb = false;
    int matrix = 1; ///< H.273; without meaning for R'G'B' codes
    bool isFull = false;
    bool isFloat = false; ///< values outside black to white are kept
};

/// Codes in 8-bit units, not rounded and not clipped (BT.601-7, BT.709-6, BT.2020-2, SMPTE 240M). @{
[[nodiscard]] Triple Encode(const Coding& coding, const Triple& rgb) noexcept;
[[nodiscard]] Triple Decode(const Coding& coding, const Triple& codes) noexcept;
/// @}

/// A patch of colour as the clip has it and as it came back.
struct ColorPair {
    Triple rgb{};     ///< the clip's R'G'B'
    double alpha = 1; ///< the clip's
    Triple found{};   ///< codes in 8-bit units
    double foundAlpha = 1;
};

/// One explanation of what was done to codes.
struct Hypothesis {
    std::vector<std::string_view> ids;               ///< of the faults it consists of; empty: nothing was done
    std::string message;                             ///< of the first of them
    std::vector<std::string> found;                  ///< of each id
    std::vector<std::string> expected;               ///< of each id
    std::function<Triple(const ColorPair&)> predict; ///< codes that come back
};

/// Everything that is tried, with "nothing was done" first.
[[nodiscard]] std::vector<Hypothesis> Hypotheses(const Coding& expected);

/// Levels, saturation and hue in one: luma × gain + offset, chroma × saturation, turned by hue.
struct LevelFit {
    double gain = 1;
    double offset = 0; ///< codes in 8-bit units
    double saturation = 1;
    double hueDegrees = 0;
    double gainUncertainty = 1;
    double offsetUncertainty = 255;
    double saturationUncertainty = 1;
    double hueUncertainty = 180;
    double residual = 1e9;  ///< codes, root of the mean square
    bool hasLuma = false;   ///< enough different lumas to tell gain from offset
    bool hasChroma = false; ///< enough chroma
};
/// The least change that explains the codes as well as all four together: what is not needed stays 1 or 0.
/// @param noise  how far codes are off where nothing is wrong
[[nodiscard]] LevelFit FitLevels(const std::vector<ColorPair>& pairs, const Coding& expected, double noise);

/// Root of the mean square difference between codes as predicted and as found, in 8-bit units, without the
/// worst twentieth of the patches.
[[nodiscard]] double ResidualOf(const Hypothesis& hypothesis, const std::vector<ColorPair>& pairs);

/// By how much two explanations differ on these colours, likewise.
[[nodiscard]] double DistanceOf(const Hypothesis& a, const Hypothesis& b, const std::vector<ColorPair>& pairs);

} // namespace tessel::verify::judge
