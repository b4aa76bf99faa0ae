/// What fitting and searching a printed number share.
#pragma once

#include "NumberReader.h"

#include <vector>

namespace tessel::verify::align {

/// The printed number as it should be, on a grid over the plate that is fine enough to show a part of a pixel.
struct NumberReader::Ink {
    std::vector<Point> spots;     // of the clip
    std::vector<double> expected; // normalised
};

} // namespace tessel::verify::align
