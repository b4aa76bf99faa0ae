/// Judges which frames are there, and in which order.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

/// Puts findings of all `order.` checks, and fills in the report's alignment.
/// @param framesPerPicture  frames of the clip in the time of one picture, by the two rates
void JudgeOrder(const align::Alignment& alignment, double framesPerPicture, Findings& findings,
                AlignmentReport& report);

} // namespace tessel::verify::judge
