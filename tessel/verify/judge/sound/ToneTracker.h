/// Cuts a channel of sound into runs of steady tones and silence while it is read.
#pragma once

#include "GrowingRun.h"
#include "HarmonicMeter.h"
#include "SampleGrid.h"
#include "ToneRun.h"
#include "TrackedBlock.h"
#include "TrackerSetup.h"

#include <cstdint>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// One channel. Every block of samples is fitted with the known tones; blocks that continue what was are added
/// to the run, and where they do not, the samples between two steady stretches are kept until the second one is
/// known, and the place of the change is found to the sample.
/// Threads: one object, one thread at a time. Memory: a few blocks, and some hundred bytes per run.
class ToneTracker {
public:
    /// @param setup  borrowed
    explicit ToneTracker(const TrackerSetup& setup);

    void Take(std::span<const float> samples);
    /// The last block ends here. @return what was found; the tracker is used up
    [[nodiscard]] ChannelTrack Finish();

private:
    void TakeBlock(std::span<const float> samples);
    /// The samples that are kept, as they would be if that run alone sounded.
    [[nodiscard]] std::vector<double> AllKeptAs(const GrowingRun& completed) const;
    void MeasureLast();
    void Resume();
    void Change(GrowingRun next);
    void GiveUp();
    void Close(double end);
    void KeepExcerpt(bool isFault);

    const TrackerSetup& mSetup;
    std::vector<float> mPartial; ///< samples of a block that is not full
    std::int64_t mPosition = 0;  ///< of the first sample of `mPartial`
    std::vector<float> mKept;    ///< samples from the run's last block on
    std::int64_t mKeptFirst = 0;
    std::vector<TrackedBlock> mPending; ///< blocks behind the run that do not continue it
    bool mHasRun = false;
    GrowingRun mRun;
    BlockTones mLastFit;           ///< of the run's last block
    std::int64_t mCleanBlocks = 0; ///< in a row
    ChannelTrack mTrack;
    SampleGrid mGrid;
    HarmonicMeter mMeter;
};

} // namespace tessel::verify::judge
