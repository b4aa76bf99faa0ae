/// Float samples to the integers of PCM and FLAC.
#pragma once

#include "Dither.h"

#include <cstdint>

namespace tessel::exporting {

/// Rounds floats, full scale ±1, to the nearest integer of `bits` bits, halves upwards; NaN gives 0. Values
/// beyond full scale clip. Triangular dither (two steps wide) is a function of position and channel alone: the
/// same samples come out however they are cut. Threads: [thread-safe].
class SampleQuantizer {
public:
    /// @param bits  16, 24 or 32
    SampleQuantizer(int bits, Dither dither) noexcept;

    /// @return the code, in the high bits of 32 where `bits` is 24 (what encoders call s32)
    [[nodiscard]] std::int32_t operator()(float sample, std::int64_t position,
                                          std::int32_t channel) const noexcept;

private:
    double mScale;
    double mLowest;
    double mHighest;
    int mShift;
    Dither mDither;
};

} // namespace tessel::exporting
