/// A run of steady tones while it grows block by block.
#pragma once

#include "ToneRun.h"
#include "TrackedBlock.h"

#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Keeps the sums for the line through its tones' phases. Threads: one object, one thread at a time.
class GrowingRun {
public:
    GrowingRun() = default;
    /// Begins with a block.
    explicit GrowingRun(const TrackedBlock& block);

    [[nodiscard]] bool Continues(const TrackerSetup& setup, const TrackedBlock& block) const;
    void Add(const TrackedBlock& block);
    /// Puts the beginning elsewhere; the sums count from there.
    void MoveBegin(double sample);
    /// Fills in phases and uncertainties.
    void Complete(const TrackerSetup& setup);

    [[nodiscard]] double Constant() const noexcept { return mConstant; }

    ToneRun run;

private:
    std::int64_t mBlocks = 0;
    double mConstant = 0;
    std::vector<double> mLastPhase; ///< unwrapped, by tone of the run
    double mSumT = 0, mSumTT = 0;
    std::vector<double> mSumA, mSumP, mSumTP, mSumPP;
    double mSumResidual = 0; ///< of squares
    std::int64_t mLastFirst = 0;
};

} // namespace tessel::verify::judge
