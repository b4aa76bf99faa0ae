/// Cuts a channel of sound into runs of steady tones and silence while it is read.
#pragma once

#include "HarmonicMeter.h"
#include "SampleGrid.h"
#include "ToneBank.h"
#include "ToneRun.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tessel::verify::judge {

/// What is known of a stream before it is tracked; shared by its channels.
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
    /// A block's tones with their phases in relation to the known frequencies.
    struct Block {
        std::int64_t first = 0; ///< sample
        BlockTones fit;
        std::vector<std::complex<double>> tones; ///< turned back to stream position 0; zero where none sounds
        double loudest = 0;
    };
    /// A run while it grows: sums for the line through its phases.
    struct Growing {
        ToneRun run;
        std::int64_t blocks = 0;
        double constant = 0;
        std::vector<double> lastPhase; ///< unwrapped, by tone of the run
        double sumT = 0, sumTT = 0;
        std::vector<double> sumA, sumP, sumTP, sumPP;
        double sumResidual = 0; ///< of squares
        std::int64_t lastFirst = 0;
    };

    void TakeBlock(std::span<const float> samples);
    [[nodiscard]] Block Fitted(std::span<const float> samples, std::int64_t first) const;
    [[nodiscard]] bool Continues(const Block& block) const;
    [[nodiscard]] bool AreAlike(const Block& a, const Block& b) const;
    [[nodiscard]] Growing Begun(const Block& block) const;
    void Add(Growing& growing, const Block& block) const;
    void Complete(Growing& growing) const;
    /// The samples that are kept, as they would be if that run alone sounded.
    [[nodiscard]] std::vector<double> AllKeptAs(const Growing& completed) const;
    void MeasureLast();
    void Resume();
    void Change(Growing next);
    void GiveUp();
    void Close(double end);
    void KeepExcerpt(bool isFault);

    const TrackerSetup& mSetup;
    std::vector<float> mPartial; ///< samples of a block that is not full
    std::int64_t mPosition = 0;  ///< of the first sample of `mPartial`
    std::vector<float> mKept;    ///< samples from the run's last block on
    std::int64_t mKeptFirst = 0;
    std::vector<Block> mPending; ///< blocks behind the run that do not continue it
    bool mHasRun = false;
    Growing mRun;
    BlockTones mLastFit;           ///< of the run's last block
    std::int64_t mCleanBlocks = 0; ///< in a row
    ChannelTrack mTrack;
    SampleGrid mGrid;
    HarmonicMeter mMeter;
};

} // namespace tessel::verify::judge
