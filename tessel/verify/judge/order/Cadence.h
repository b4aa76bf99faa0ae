/// Patterns in which frames are shown: pulldown, and conversions of the frame rate.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tessel::verify::judge {

struct Cadence {
    double picturesPerFrame = 1;
    std::string text;                             ///< the pattern, in words
    std::pair<std::int64_t, std::int64_t> frames; ///< the first and last frame that is shown
};

/// A pattern that the pictures repeat, frames taken at even distances, or frames that follow the movie's own
/// rate. Between the latter, pictures may show no frame: conversions that blend make such pictures.
///
/// @param shown             the frame that each picture shows; -1 where that is not known
/// @param framesPerPicture  frames of the clip in the time of one picture, by the two rates
[[nodiscard]] std::optional<Cadence> FindCadence(const std::vector<std::int64_t>& shown,
                                                 double framesPerPicture);

} // namespace tessel::verify::judge
