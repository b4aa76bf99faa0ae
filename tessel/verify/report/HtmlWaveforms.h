/// Waveforms inside the page.
#pragma once

#include "TellingSound.h"

#include <string>
#include <vector>

namespace tessel::verify {

/// A drawing for each stretch: the clip's sound, and the movie's over it. Empty where there is none.
[[nodiscard]] std::string WaveformsAsHtml(const std::vector<TellingSound>& sounds);

} // namespace tessel::verify
