/// Judges what became of a clip's sound.
#pragma once

#include "SoundSampler.h"

#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/report/Findings.h>

#include <cstdint>

namespace tessel::verify::judge {

/// What the movie's codec cannot carry.
enum class Uncarried : std::uint8_t { Note, Fault };

/// Puts findings of all `audio.` checks.
void JudgeSound(const SoundEvidence& evidence, const read::SoundFacts& movie, Uncarried uncarried,
                Findings& findings);

} // namespace tessel::verify::judge
