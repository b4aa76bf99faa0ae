/// A frame as the clip has it, as it came back, and what differs, for eyes.
#pragma once

#include <cstdint>
#include <vector>

namespace tessel::verify {

/// Three small pictures of one size. Samples are R'G'B', 8 bits, top row first.
struct TellingFrame {
    std::int64_t frame = 0;   ///< of the clip
    std::int64_t picture = 0; ///< of the movie
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> expected;
    std::vector<std::uint8_t> actual;
    std::vector<std::uint8_t> difference; ///< 128 where equal, four times enlarged
    double off = 0;                       ///< mean difference, 0..255
};

} // namespace tessel::verify
