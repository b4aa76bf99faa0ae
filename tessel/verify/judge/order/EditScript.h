/// From the order of frames in a movie to the steps that made it from the clip.
#pragma once

#include <tessel/verify/report/Report.h>

#include <cstdint>
#include <string>
#include <vector>

namespace tessel::verify::judge {

/// What was done to the order of a clip's frames.
struct EditScript {
    std::vector<EditStep> steps; ///< in the order of the movie
    std::string cadence;         ///< the regular pattern, in words; empty: there is none
    double cadenceRatio = 1;     ///< pictures per frame, where there is a pattern
};

/// Finds the shortest plain explanation: reversed runs, exchanged pairs and a regular pattern first, then what
/// the longest rising sequence of frames leaves over.
///
/// @param shown       the frame that each picture shows; -1 where that is not known
/// @param frameCount  of the clip; shown frames are below it
/// @param framesPerPicture  frames of the clip in the time of one picture, by the two rates
[[nodiscard]] EditScript MakeEditScript(const std::vector<std::int64_t>& shown, std::int64_t frameCount,
                                        double framesPerPicture = 1);

} // namespace tessel::verify::judge
