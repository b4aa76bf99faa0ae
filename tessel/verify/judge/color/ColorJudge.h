/// Judges what became of colours.
#pragma once

#include "ColorSampler.h"

#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

struct ColorCase {
    const reference::ClipFacts& clip;
    const read::PictureFacts& movie;
    const ColorSampler& sampler;
    double lostStep =
        0; ///< of codes that lost bits, in 8-bit codes: what cutting them down moves is part of that
    double chromaOff = 0; ///< pixels by which chroma is not where its colour belongs
};

/// Puts findings of the `color.` checks that flat colours can tell: the winner of the closed list where it
/// explains the codes, the fitted levels where those explain them better, and what the clip's colours cannot
/// show as not visible.
void JudgeColor(const ColorCase& given, Findings& findings);

} // namespace tessel::verify::judge
