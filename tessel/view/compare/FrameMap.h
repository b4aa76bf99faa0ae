/// Which picture of a movie shows which frame of the clip.
#pragma once

#include <tessel/verify/report/Report.h>

#include <cstdint>
#include <vector>

namespace tessel::view {

/// For each frame of the clip the movie's first picture that shows it, counted from 0; -1: none does.
using FrameMap = std::vector<std::int64_t>;

/// By the steps that verification found. Where it could not tell frames, picture n shows frame n.
[[nodiscard]] FrameMap MapOf(const verify::AlignmentReport& alignment);

} // namespace tessel::view
