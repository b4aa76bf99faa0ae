/// How a movie's codes may rightly be made.
#pragma once

#include "ColorSampler.h"

#include <tessel/verify/read/MovieFacts.h>

#include <vector>

namespace tessel::verify::judge {

/// The codings that a movie may rightly have: as it announces, or as the clip has it.
[[nodiscard]] std::vector<Coding> RightCodings(const reference::ClipFacts& clip,
                                               const read::PictureFacts& movie);

/// Spots with their codes in 8-bit units of a coding.
[[nodiscard]] std::vector<ColorPair> PairsOf(const std::vector<ColorSampler::Spot>& spots,
                                             const Coding& coding);

} // namespace tessel::verify::judge
