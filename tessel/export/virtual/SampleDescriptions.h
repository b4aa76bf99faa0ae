/// What QuickTime's index says of a track's samples: their codec, their format and their tags.
#pragma once

#include "AtomWriter.h"

#include <tessel/export/plan/AudioPlan.h>
#include <tessel/export/plan/VideoPlan.h>

namespace tessel::exporting {

/// Pictures of a codec that needs no encoder. @throws ExportError  for any other codec
void PutPictureDescription(const VideoPlan& plan, AtomWriter& out);

/// PCM. Rates beyond 16 bits have a description of version 2, samples of more than 16 bits one of version 1.
void PutSoundDescription(const AudioPlan& plan, AtomWriter& out);

} // namespace tessel::exporting
