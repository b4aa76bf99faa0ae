/// A short stretch of sound as the clip has it and as it came back, for eyes.
#pragma once

#include <string>
#include <vector>

namespace tessel::verify {

struct TellingSound {
    std::string channel; ///< of the movie
    double seconds = 0;  ///< of the first sample, by the movie's times
    double duration = 0; ///< seconds
    std::vector<float>
        expected;              ///< the clip's samples over that time; empty where the clip has no such channel
    std::vector<float> actual; ///< the movie's; their number may differ with the sample rate
};

} // namespace tessel::verify
