/// Tells what became of levels: gain, offset, saturation and hue.
#pragma once

#include "hypotheses/Levels.h"

#include <tessel/verify/report/Findings.h>

#include <string>
#include <vector>

namespace tessel::verify::judge {

/// Threads: [any-thread]. @{
/// Whether one of the four is beyond its tolerance.
[[nodiscard]] bool IsBeyond(const LevelFit& fit, const Tolerances& limits);

/// What changed, one sentence each.
[[nodiscard]] std::vector<std::string> LevelMessages(const LevelFit& fit);

/// A verdict on each of the four, and on chroma that is gone altogether.
void TellLevels(const LevelFit& fit, Findings& findings);
/// @}

} // namespace tessel::verify::judge
