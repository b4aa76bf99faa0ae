/// Judges what became of the two fields of pictures.
#pragma once

#include "FieldSampler.h"

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

struct FieldsCase {
    const FieldSampler& sampler;
    const reference::ClipFacts& clip;
    const read::PictureFacts& movie;
    const align::Alignment& alignment; ///< with the numbers of the fields where they were read
};

/// Puts findings of all `fields.` checks. Geometry and order are judged before.
void JudgeFields(const FieldsCase& given, Findings& findings);

} // namespace tessel::verify::judge
