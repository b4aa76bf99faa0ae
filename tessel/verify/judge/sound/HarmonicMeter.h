/// What is beside a channel's tones: harmonics, noise, a constant, flat tops.
#pragma once

#include "ToneBank.h"
#include "ToneRun.h"

#include <array>
#include <complex>
#include <cstdint>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// A tone and its harmonics, as far as they are below half the sample rate.
class HarmonicBank {
public:
    static constexpr int kHighest = 5;

    HarmonicBank(double cyclesPerSample, int length);

    double cycles; ///< of the tone, per sample
    ToneBank bank;
};

/// Gathers over the steady blocks of one channel. Harmonics that a bent curve makes keep their phase in
/// relation to the tone, so they are averaged with their phase, and noise averages out. Threads: one object,
/// one thread at a time.
class HarmonicMeter {
public:
    /// A block in which one tone sounds.
    void TakeTone(const HarmonicBank& bank, std::span<const float> samples);
    /// A block of several tones, or of none. @param fit  of all known tones
    void TakeOther(const BlockTones& fit, bool isSilent);

    void FillIn(ChannelStatistics& statistics, double samplesPerBlock) const;

private:
    void TakeRest(const BlockTones& fit);

    std::int64_t mToneBlocks = 0;
    std::int64_t mSilentBlocks = 0;
    std::int64_t mBlocks = 0;
    double mConstant = 0, mConstantSquares = 0;
    double mNoise = 0; ///< sum of mean squares
    std::array<std::complex<double>, HarmonicBank::kHighest + 1>
        mHarmonics{}; ///< sums against the tone's amplitude
    std::array<double, HarmonicBank::kHighest + 1> mHarmonicSquares{};
    std::int64_t mFlatBlocks = 0;
    std::int64_t mShapeBlocks = 0; ///< blocks whose tops could be seen to be flat
    double mFlatLevel = 0;
};

} // namespace tessel::verify::judge
