/// Plans in words, for people.
#pragma once

#include "OutputPlan.h"

#include <string>
#include <vector>

namespace tessel::exporting {

/// "prores yuva444p10le, 1920x1080, 30000/1001 fps, upper field first"
[[nodiscard]] std::string DescribeVideo(const VideoPlan& plan);

/// "pixel aspect 10:11, primaries 1, transfer 1, matrix 1, limited range", codes of H.273
[[nodiscard]] std::string DescribeTags(const VideoPlan& plan);

/// "flac, 48000 Hz, 6 channels (5.1)"
[[nodiscard]] std::string DescribeAudio(const AudioPlan& plan);

/// What the clip says and the file will not, one text each: "field order (upper field first)". A fact that
/// readers take for granted anyway, such as square pixels, is never lost.
[[nodiscard]] std::vector<std::string> LossesOf(const OutputPlan& plan);

} // namespace tessel::exporting
