/// Measures how near pictures are to the clip's.
#pragma once

#include "PlaneLikeness.h"

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/Findings.h>

#include <array>
#include <cstdint>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tessel::verify::judge {

/// Compares pictures with the clip's own in the movie's sample format.
class FidelitySampler {
public:
    /// @param stride  frames from one that is measured to the next
    /// @param threads  that measure at once, the caller's among them
    FidelitySampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts, std::int64_t stride,
                    int threads);

    [[nodiscard]] bool Wants(std::int64_t frame) const noexcept { return frame % mStride == 0; }

    /// Which rows of a picture are measured.
    enum class Rows {
        All,
        InTurns, ///< every eighth band of 16, other bands in each frame, so that eight frames show all
    };

    /// Pictures of another size or layout than the clip can be made in are passed over.
    /// @param movie  facts, complete by the first picture
    void Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie, Rows rows);

    /// Waits for what is still being measured. Called once, behind the last picture.
    void Finish();

    struct Sample {
        std::int64_t frame = 0;
        std::array<PlaneLikeness, 4> planes;
        int planeCount = 0;
        Artefacts artefacts; ///< of Y', or G
    };
    /// In the order of pictures. Complete once finished.
    [[nodiscard]] const std::vector<Sample>& Samples() const noexcept { return mSamples; }

private:
    /// Renders frames in the movie's layout, one thread at a time.
    using Renderer = std::unique_ptr<reference::ClipPictures>;

    void Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie);
    [[nodiscard]] Renderer MakeRenderer(exporting::ChromaRows rows) const;
    [[nodiscard]] Sample MeasureFrame(const read::Picture& picture, std::int64_t frame, Rows rows);
    [[nodiscard]] static Sample Measure(reference::ClipPictures& clip, const read::Picture& found,
                                        std::int64_t frame, Rows rows);

    const exporting::SignalSource& mClip;
    reference::ClipFacts mFacts;
    std::int64_t mStride;
    std::size_t mThreads;
    bool mIsChosen = false;
    std::optional<exporting::PictureLayout> mLayout; ///< nothing: the layout cannot be made
    exporting::YCbCrCoding mCoding;
    exporting::ChromaRows mChromaRows = exporting::ChromaRows::Frame;
    std::mutex mIdleMutex;
    std::vector<Renderer> mIdle; ///< renderers that no thread uses now
    std::deque<std::future<Sample>> mRunning;
    std::vector<Sample> mSamples;
};

/// Puts findings of all `fidelity.` checks.
void JudgeFidelity(const FidelitySampler& sampler, const read::PictureFacts& movie, Findings& findings);

} // namespace tessel::verify::judge
