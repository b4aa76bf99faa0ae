/// What is known of a stream of sound before its tones are tracked.
#pragma once

#include "HarmonicMeter.h"
#include "ToneBank.h"

#include <vector>

namespace tessel::verify::judge {

/// Shared by a stream's channels.
struct TrackerSetup {
    /// @param cyclesPerSample  frequencies that may sound
    /// @param onLevel          amplitude from which a tone counts as sounding, full scale 1
    TrackerSetup(std::vector<double> cyclesPerSample, double onLevel);

    std::vector<double> frequencies; ///< cycles per sample
    double onLevel;
    ToneBank bank;
    std::vector<HarmonicBank> harmonics; ///< by frequency

    /// Samples in a block: 20 ms at 48 kHz, or so many that the lowest tone has 1.6 periods.
    [[nodiscard]] int BlockLength() const noexcept { return bank.Length(); }
};

} // namespace tessel::verify::judge
