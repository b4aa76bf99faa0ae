/// Judges depth of codes, subsampling and siting of chroma.
#pragma once

#include "DetailSampler.h"

#include <tessel/verify/judge/container/ContainerJudge.h>
#include <tessel/verify/report/Findings.h>

namespace tessel::verify::judge {

struct DetailResult {
    double lostStep = 0; ///< of codes that lost bits, in 8-bit codes; 0 where none are lost
    ChromaShift chroma;
    double chromaOff = 0; ///< luma samples by which chroma is not where its colour belongs
};

/// Puts findings of `color.depth`, `color.subsampling` and `color.siting`.
DetailResult JudgeDetail(const DetailSampler& sampler, const read::PictureFacts& movie, Findings& findings);

} // namespace tessel::verify::judge
