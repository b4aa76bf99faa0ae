/// Codes that were cut off at two levels.
#pragma once

#include "Hypothesis.h"

#include <optional>

namespace tessel::verify::judge {

/// From the lowest code to the highest, in 8-bit units.
struct CodeSpan {
    double lowest = 0;
    double highest = 255;
};

struct ClippingFit {
    Hypothesis hypothesis;
    int patches = 0;          ///< with codes beyond the levels
    double residual = 0;      ///< of those patches, explained so
    double plainDistance = 0; ///< of those patches from what they should be
};

/// Takes the levels from the codes: the outermost ones that came back. Where the clip has codes beyond them,
/// and those came back at the levels, they were cut off there.
/// @param least  how far beyond a level a code must be to count, in codes
/// @return nothing where no code of the clip is beyond, or none is between the levels
[[nodiscard]] std::optional<ClippingFit> FitClipping(const Coding& expected,
                                                     const std::vector<ColorPair>& pairs, double least);

/// Whether enough of the clip's codes lie outside the nominal range, and the samples of `expected` hold them.
[[nodiscard]] bool ShowsClipping(const Coding& expected, const std::vector<ColorPair>& pairs, double least);

} // namespace tessel::verify::judge
