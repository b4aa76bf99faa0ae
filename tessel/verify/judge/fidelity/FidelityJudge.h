/// Measures how near pictures are to the clip's.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/Findings.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tessel::verify::judge {

/// One plane of a picture against the clip's.
struct PlaneLikeness {
    double psnr = 0; ///< dB, at most 100 (equal)
    double ssim = 1; ///< mean over windows of 8 × 8 samples, half overlapping
    bool isEqual = false;
};

/// Both components have one size and one number of bits.
[[nodiscard]] PlaneLikeness Compare(const read::ComponentView& expected, const read::ComponentView& found);

/// Compares pictures with the clip's own in the movie's sample format.
class FidelitySampler {
public:
    /// @param stride  pictures from one that is measured to the next
    FidelitySampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                    std::int64_t stride);

    [[nodiscard]] bool Wants(std::int64_t frame) const noexcept { return frame % mStride == 0; }

    /// Pictures of another size or layout than the clip can be made in are passed over.
    /// @param movie  facts, complete by the first picture
    void Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie);

    struct Sample {
        std::int64_t frame = 0;
        std::array<PlaneLikeness, 4> planes;
        int planeCount = 0;
    };
    [[nodiscard]] const std::vector<Sample>& Samples() const noexcept { return mSamples; }

private:
    void Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie);
    [[nodiscard]] static Sample Measure(const read::Picture& expected, const read::Picture& found,
                                        std::int64_t frame);

    const exporting::SignalSource& mClip;
    reference::ClipFacts mFacts;
    std::int64_t mStride;
    bool mIsChosen = false;
    std::unique_ptr<reference::ClipPictures> mPictures; ///< null: the layout cannot be made
    std::vector<Sample> mSamples;
};

/// Puts findings of all `fidelity.` checks.
void JudgeFidelity(const FidelitySampler& sampler, const read::PictureFacts& movie, Findings& findings);

} // namespace tessel::verify::judge
