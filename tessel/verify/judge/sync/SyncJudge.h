/// Judges whether sound and picture belong together and stay together.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/judge/sound/SoundSampler.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

struct SyncCase {
    const reference::ClipFacts& clip;
    const read::MovieFacts& movie;
    const align::Alignment& alignment;
    const SoundEvidence& sound;
};

/// Puts findings of all `sync.` checks.
void JudgeSync(const SyncCase& given, Findings& findings);

} // namespace tessel::verify::judge
