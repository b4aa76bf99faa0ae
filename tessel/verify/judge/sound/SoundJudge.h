/// Judges what became of a clip's sound.
#pragma once

#include "SoundSampler.h"

#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

/// Puts findings of all `audio.` checks.
void JudgeSound(const SoundEvidence& evidence, const read::SoundFacts& movie, Findings& findings);

} // namespace tessel::verify::judge
