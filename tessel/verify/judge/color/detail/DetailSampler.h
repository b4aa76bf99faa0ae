/// What single samples tell about colours: how many codes there are, and what edges look like.
#pragma once

#include "ChromaEdges.h"
#include "CodeDepth.h"

#include <tessel/verify/align/Placement.h>
#include <tessel/verify/reference/MovieLayout.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tessel::verify::judge {

/// Compares some pictures, sample by sample, with the clip's in the movie's own sample format.
/// Threads: one object, one thread at a time.
class DetailSampler {
public:
    DetailSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

    /// Whether frame `frame` is one of the few that are looked at.
    [[nodiscard]] bool Wants(std::int64_t frame) const noexcept { return frame % mStride == 0; }

    /// Pictures of another size, place or sample format than the clip can be made in are passed over.
    /// Cost: rendering and converting one frame of the clip, twice for the first.
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement,
              const read::PictureFacts& movie);

    [[nodiscard]] bool HasPictures() const noexcept { return mTaken > 0; }

    /// Y' or R', G', B'; and Cb with Cr. Nothing without pictures. @{
    [[nodiscard]] const std::optional<CodeCounts>& Levels() const noexcept { return mLevels; }
    [[nodiscard]] const std::optional<CodeCounts>& Chroma() const noexcept { return mChroma; }
    /// @}
    /// Means of Y' or R', G', B' where the clip has one code for some samples.
    [[nodiscard]] const std::vector<StairPoint>& Stairs() const noexcept { return mStairs; }

    [[nodiscard]] const std::vector<EdgeProfile>& Edges(Axis axis) const noexcept
    {
        return axis == Axis::Across ? mAcross : mDown;
    }
    [[nodiscard]] const LumaShift& Luma(Axis axis) const noexcept
    {
        return axis == Axis::Across ? mLumaAcross : mLumaDown;
    }

    [[nodiscard]] const RowSteps& Steps() const noexcept { return mSteps; }

private:
    void Choose(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie);
    void TakeCodes(const read::Picture& was, const read::Picture& is);

    const exporting::SignalSource& mClip;
    reference::ClipFacts mFacts;
    std::int64_t mStride = 1;
    bool mIsChosen = false;
    bool mHasFields = false; ///< rows of chroma that are neighbours belong to two fields
    std::unique_ptr<reference::ClipPictures> mPictures; ///< null: the layout cannot be made
    int mTaken = 0;
    std::optional<CodeCounts> mLevels;
    std::optional<CodeCounts> mChroma;
    std::vector<StairPoint> mStairs;
    std::vector<EdgeProfile> mAcross;
    std::vector<EdgeProfile> mDown;
    LumaShift mLumaAcross;
    LumaShift mLumaDown;
    RowSteps mSteps;
};

} // namespace tessel::verify::judge
