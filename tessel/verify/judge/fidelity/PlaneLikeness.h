/// How like one plane of a picture is to the clip's.
#pragma once

#include <tessel/verify/read/Movie.h>

#include <cstdint>

namespace tessel::verify::judge {

struct PlaneLikeness {
    double psnr = 0; ///< dB, at most 100 (equal)
    double ssim = 1; ///< mean over windows of 8 × 8 samples, half overlapping
    bool isEqual = false;
    double worstSsim = 1; ///< of the worst window
    int worstX = 0;       ///< its top left sample
    int worstY = 0;
};

/// Both components have one size and one number of bits. Integers are added up exactly.
/// Threads: [any-thread]. Cost: some nanoseconds a sample.
[[nodiscard]] PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found);

/// What lossy codecs leave in smooth areas, as numbers only.
struct Artefacts {
    /// Steps of the error across the edges of 8 × 8 blocks, as a multiple of those inside blocks: 1 is none.
    double blocking = 1;
    /// Steps between neighbouring rows that the clip has and the picture has lost, as a share of the clip's.
    double banding = 0;
};

/// Looks at every fourth row and column. Components as for `Compare`.
[[nodiscard]] Artefacts MeasureArtefacts(const read::ComponentView& expected, const read::ComponentView& found);

} // namespace tessel::verify::judge
