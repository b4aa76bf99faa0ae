/// Which frequencies a stretch of sound has, when nothing is known of it.
#pragma once

#include <tessel/verify/reference/ClipSound.h>

#include <vector>

namespace tessel::verify::judge {

struct SpectralPeak {
    double frequency = 0; ///< Hz
    double amplitude = 0; ///< peak of a steady tone that lasts as long as the loudest window, full scale 1
};

/// The peaks of all channels, loudest first, at most `most`. Windows of about 0.35 s (Hann) stand by half
/// apart; each frequency counts with its loudest window, so that short tones show. Frequencies are good to
/// about a hundredth of 1 / 0.35 s for tones that fill a window. Nothing below 2 / 0.35 s.
[[nodiscard]] std::vector<SpectralPeak> PeaksOf(const reference::Samples& samples, int sampleRate,
                                                std::size_t most);

/// How many times faster than a clip a sound runs, by its frequencies alone: where the peaks are, in relation
/// to the clip's. 1 where as many tones are in their place as anywhere else; 0 where no ratio brings together
/// half of what is loud in the sound and the clip's tones.
/// @param tones  of the clip, Hz
[[nodiscard]] double PitchRatio(const std::vector<SpectralPeak>& peaks, const std::vector<double>& tones);

} // namespace tessel::verify::judge
