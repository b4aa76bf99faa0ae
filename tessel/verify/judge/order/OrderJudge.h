/// Judges which frames are there, and in which order.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

/// Puts findings of all `order.` checks, and fills in the report's alignment.
void JudgeOrder(const align::Alignment& alignment, Findings& findings, AlignmentReport& report);

} // namespace tessel::verify::judge
