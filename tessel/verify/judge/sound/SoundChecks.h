/// The groups of checks that `JudgeSound` makes of a sound whose tones were found.
#pragma once

#include "SoundJudge.h"

namespace tessel::verify::judge {

/// Which channel is where: order, mixtures, polarity, gain and silence.
void JudgeSoundRouting(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                       Findings& findings);

/// Segments out of order, how fast the sound runs, and what is missing or added.
void JudgeSoundTimes(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                     Findings& findings);

/// What is beside the tones: clipping, constant part, noise, harmonics and lost bits.
void JudgeSoundLevels(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                      Findings& findings);

} // namespace tessel::verify::judge
