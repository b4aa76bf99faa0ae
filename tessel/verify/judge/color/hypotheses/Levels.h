/// Gain, offset, saturation and hue, fitted.
#pragma once

#include "Hypothesis.h"

#include <vector>

namespace tessel::verify::judge {

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
    double residual = 1e9;         ///< codes, root of the mean square
    bool hasLuma = false;          ///< enough different lumas to tell gain from offset
    bool hasChroma = false;        ///< enough chroma
    bool isGainOrOffset = false;   ///< either explains the codes; the fit has one of them
    bool chromaIsLikeLuma = false; ///< `saturation` is `gain`: R'G'B' was multiplied
};

/// The least change that explains the codes as well as all four together: what is not needed stays 1 or 0.
/// Clipping at the ends of the samples is a part of the model.
/// @param noise  how far codes are off where nothing is wrong
[[nodiscard]] LevelFit FitLevels(const std::vector<ColorPair>& pairs, const Coding& expected, double noise);

/// What chroma is multiplied by beside luma: R'G'B' × gain scales both alike.
[[nodiscard]] double OwnSaturation(const LevelFit& fit) noexcept;

/// How many of gain, offset, saturation and hue have changed.
[[nodiscard]] int ChangesOf(const LevelFit& fit) noexcept;

} // namespace tessel::verify::judge
