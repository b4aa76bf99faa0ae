/// The closed list of ways in which colours go wrong, one family a file.
#pragma once

#include "Coding.h"

#include <tessel/verify/report/Report.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tessel::verify::judge {

/// A patch of colour as the clip has it and as it came back.
struct ColorPair {
    Triple rgb{};     ///< the clip's R'G'B'
    double alpha = 1; ///< the clip's
    Triple found{};   ///< codes in 8-bit units
    double foundAlpha = 1;
    Triple otherField{}; ///< the clip's R'G'B' on the rows of the other field; `rgb` where there are no fields
};

/// One explanation of what was done to codes.
struct Hypothesis {
    std::vector<std::string_view> ids;               ///< of the faults it consists of; empty: nothing was done
    std::string message;                             ///< of the first of them
    std::vector<std::string> found;                  ///< of each id
    std::vector<std::string> expected;               ///< of each id
    std::function<Triple(const ColorPair&)> predict; ///< codes that come back
};

/// Everything that is tried, with "nothing was done" first. What takes measures from the codes comes from
/// `FitClipping` and `FitLevels`.
[[nodiscard]] std::vector<Hypothesis> Hypotheses(const Coding& expected);

/// Root of the mean square difference between codes as predicted and as found, in 8-bit units, without the
/// worst twentieth of the patches.
[[nodiscard]] double ResidualOf(const Hypothesis& hypothesis, const std::vector<ColorPair>& pairs);

/// By how much two explanations differ on these colours, likewise.
[[nodiscard]] double DistanceOf(const Hypothesis& a, const Hypothesis& b, const std::vector<ColorPair>& pairs);

} // namespace tessel::verify::judge
