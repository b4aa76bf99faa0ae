/// Judges what became of alpha.
#pragma once

#include "hypotheses/Hypothesis.h"

#include <tessel/verify/report/Findings.h>

#include <vector>

namespace tessel::verify::judge {

/// Puts a finding of `color.alpha` about alpha itself; colours that were multiplied by it are the list's.
/// @param pairs      spots of a clip and a movie that both have alpha
/// @param noise      how far codes are off where nothing is wrong
void JudgeAlpha(const std::vector<ColorPair>& pairs, double noise, Findings& findings);

} // namespace tessel::verify::judge
