/// Everything that a window shows of one frame, made off the window's thread.
#pragma once

#include "CodeMarks.h"
#include "DistinctRows.h"
#include "ScreenConverter.h"
#include "ViewedClip.h"

#include <tessel/export/convert/Picture.h>
#include <tessel/scopes/CodeCheck.h>
#include <tessel/scopes/Counts.h>
#include <tessel/scopes/Signal.h>
#include <tessel/verify/reference/ClipSound.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessel::view {

/// What the scopes draw.
struct ScopeCounts {
    static constexpr int kColumns = 360;
    static constexpr int kLevels = 288; ///< 240 of them from black to white
    static constexpr int kVectors = 288;
    /// Of two levels each: with fewer codes than bins every so many of them would be empty.
    static constexpr int kBins = kLevels / 2;

    scopes::CountGrid waveform{kColumns, kLevels};
    scopes::CountGrid red{kColumns / 3, kLevels};
    scopes::CountGrid green{kColumns / 3, kLevels};
    scopes::CountGrid blue{kColumns / 3, kLevels};
    scopes::CountGrid vectors{kVectors, kVectors};
    /// Of Y', R', G', B'.
    std::vector<std::uint32_t> histograms[4] = {
        std::vector<std::uint32_t>(kBins), std::vector<std::uint32_t>(kBins), std::vector<std::uint32_t>(kBins),
        std::vector<std::uint32_t>(kBins)};
    exporting::Matrix matrix = exporting::Matrix::Bt709;
    int rowStep = 1; ///< every so many rows were counted
};

/// What is wanted of a frame.
struct FrameWish {
    bool scopes = false;
    bool codeCheck = false;
    int screenRowStep = 1; ///< of the picture for the screen; more costs less
    int scopeRowStep = 1;  ///< more costs less
    /// Frames that are begun sooner after the last ones with scopes have none; 0: all have.
    double secondsBetweenScopes = 0;

    bool operator==(const FrameWish&) const = default;
};

struct ShownFrame {
    std::int64_t frame = 0;
    FrameWish wish;
    exporting::FrameView pixels;               ///< as the plug-in painted them
    exporting::Picture screen;                 ///< by `ScreenConverter`; may have fewer rows than the frame
    std::shared_ptr<const ScopeCounts> scopes; ///< null: not counted
    std::shared_ptr<const scopes::CodeFaults> faults;
    exporting::Picture marks;    ///< of the faults, by `MarksOf`; empty where they were not looked for
    std::vector<double> peaksDb; ///< of each channel in the frame's time, in the order of files
    std::string identSegment;    ///< of the channel identification; empty: the document has none
};

/// Makes frames of one clip. Threads: one object, one thread at a time.
class FrameMaker {
public:
    explicit FrameMaker(std::shared_ptr<const ViewedClip> clip);

    /// @throws importhost::HostError, exporting::ExportError, std::bad_alloc
    [[nodiscard]] ShownFrame Make(std::int64_t frame, const FrameWish& wish);

private:
    [[nodiscard]] std::shared_ptr<const ScopeCounts> Count(const exporting::FrameView& pixels, int rowStep);
    [[nodiscard]] std::shared_ptr<const scopes::CodeFaults> Check(const exporting::FrameView& pixels);
    void MeasureSound(ShownFrame& shown);

    std::shared_ptr<const ViewedClip> mClip;
    ScreenConverter mToScreen;
    DistinctRows mRows;
    RowBatches mBatches;
    scopes::SignalReader mReader; ///< of batches of rows
    std::optional<verify::reference::ClipSound> mSound;
    verify::reference::Samples mSamples;
};

} // namespace tessel::view
