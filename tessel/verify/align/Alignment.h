/// Which frame of the clip each picture of the movie shows.
#pragma once

#include "NumberReader.h"
#include "Placement.h"

#include <tessel/verify/report/Report.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::verify::align {

/// What is remembered of a picture: a few bytes.
struct PictureRecord {
    std::optional<double> seconds; ///< presentation time
    std::int64_t frame = -1;       ///< of the clip; -1: not known. The earlier one where fields are of two
    float confidence = 0;          ///< of `frame`
    float likeness = 0;            ///< of the place of the number to digits
    /// What each field's rows say, where they were read one by one; -1: not known. Upper, lower.
    std::int64_t fields[2] = {-1, -1};
};

/// All pictures in presentation order.
struct Alignment {
    AlignmentMethod method = AlignmentMethod::None;
    std::int64_t frameCount = 0;        ///< of the clip
    std::optional<Placement> placement; ///< of the frame in the pictures, where it could be told
    bool isPlacedByContent = false;     ///< to whole pixels, because no number could be read
    std::vector<PictureRecord> pictures;
};

} // namespace tessel::verify::align
