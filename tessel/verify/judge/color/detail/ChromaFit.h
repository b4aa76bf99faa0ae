/// What explains the edges of chroma along one axis: nothing, a shift, or fewer samples.
#pragma once

#include "ChromaEdges.h"

#include <string_view>
#include <vector>

namespace tessel::verify::judge {

struct ChromaFit {
    int edges = 0;            ///< that are compared; with 0, the other members mean nothing
    int places = 0;           ///< columns or rows in which they are
    double plainResidual = 0; ///< of the edges as they should be, in parts of their height
    double shift = 0;         ///< chroma lies so many luma samples further right or down
    double shiftUncertainty = 0;
    double shiftedResidual = 0; ///< with that shift
    int thinned = 1;            ///< of so many luma samples one chroma sample was kept, in the best case of it
    double thinnedResidual = 0; ///< with that
};

/// @param clips     edges are of an R'G'B' picture whose samples end at black and white
/// @param perChroma luma samples for each chroma sample along this axis
[[nodiscard]] ChromaFit FitChroma(const std::vector<EdgeProfile>& profiles, bool clips, int perChroma);

} // namespace tessel::verify::judge
