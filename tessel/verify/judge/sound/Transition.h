/// Where one steady sound gives way to another, to the sample.
#pragma once

#include "ToneRun.h"

#include <span>
#include <vector>

namespace tessel::verify::judge {

/// A steady sound that goes on for ever: a constant and tones.
class SteadySound {
public:
    /// @param frequencies  cycles per sample, by index
    /// @param run          whose tones are meant
    SteadySound(const std::vector<double>& frequencies, const ToneRun& run, double constant);

    /// The samples from stream position `first` on.
    void Render(double first, std::span<double> samples) const;

private:
    struct Oscillator {
        double cycles = 0; ///< per sample
        double amplitude = 0;
        double phase = 0; ///< at sample 0
    };
    std::vector<Oscillator> mOscillators;
    double mConstant;
};

struct Transition {
    std::size_t end = 0;    ///< first sample that is not of the sound before
    std::size_t begin = 0;  ///< first sample of the sound behind; beyond `end` there is silence between
    double uncertainty = 0; ///< samples by which both may be off
};

/// The most likely place, for normal noise: the least sum of the squares of what remains when samples are taken
/// from `before` up to a place, from `behind` from a later place on, and from silence between.
/// @param samples        what was heard
/// @param before,behind  what would be heard if either lasted; as many samples
/// @param noise          RMS of what neither explains where it lasts
/// @param allowsGap      whether there may be silence between
[[nodiscard]] Transition FindTransition(std::span<const float> samples, std::span<const double> before,
                                        std::span<const double> behind, double noise, bool allowsGap);

} // namespace tessel::verify::judge
