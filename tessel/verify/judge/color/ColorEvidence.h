/// What is known of a movie's colours before they are judged: the coding that fits best, and how well every
/// explanation on the list fits.
#pragma once

#include "ColorJudge.h"
#include "hypotheses/Clipping.h"
#include "hypotheses/Coding.h"
#include "hypotheses/Hypothesis.h"

#include <optional>
#include <string_view>
#include <vector>

namespace tessel::verify::judge {

/// How far codes are off where nothing is wrong: rounding, and what codecs do to flat colours. In 8-bit codes.
[[nodiscard]] double NoiseOf(CodecClass codec) noexcept;

/// Everything in 8-bit codes. Threads: [any-thread].
struct ColorEvidence {
    /// Takes the right coding that fits best, and all explanations of it.
    ColorEvidence(const ColorCase& given, const Tolerances& limits);

    double noise;
    double tolerance;
    Coding coding;
    std::vector<ColorPair> pairs;
    std::vector<Hypothesis> list; ///< first of all that nothing is wrong
    std::optional<ClippingFit> clipping;
    std::vector<double> residuals; ///< by hypothesis

    /// How far codes are off if nothing is wrong.
    [[nodiscard]] double Off() const { return residuals.front(); }

    /// Many spots average rounding away; what codecs do to flat colours less so.
    [[nodiscard]] double FitNoise() const noexcept { return noise / 4; }

    [[nodiscard]] bool IsVisible(const Hypothesis& hypothesis) const;

    /// Whether the explanation moves these colours at all. Multiplying by alpha, for instance, leaves opaque
    /// colours as they are.
    [[nodiscard]] bool ChangesColors(const Hypothesis& hypothesis) const;

    /// Whether a fault of a check of the list would have moved these colours.
    [[nodiscard]] bool ShowsFaultOf(std::string_view check) const;

    /// The same beside the explanation that wins.
    [[nodiscard]] bool ShowsFaultBeside(std::string_view check, std::size_t winner) const;

    /// Whether codes beyond two levels came back at those levels.
    [[nodiscard]] bool IsCutOff() const;

    /// A matrix that moves these codes by less than the tolerance, where the codes have moved just as far in
    /// its direction, which the losses of a codec do not.
    /// @return its place in the list
    [[nodiscard]] std::optional<std::size_t> FaintMatrix() const;
};

} // namespace tessel::verify::judge
