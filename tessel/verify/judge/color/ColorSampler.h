/// Pairs of colours, from the clip's pictures and the movie's.
#pragma once

#include "ColorModel.h"

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Takes the means of spots where the clip's picture has no edges nearby, so that neither blur nor subsampled
/// chroma matters. Field by field where the clip is interlaced. Threads: one object, one thread at a time.
class ColorSampler {
public:
    /// @param numbers  where the clip prints numbers, whose black and white are spots of their own
    ColorSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                 const align::NumberReader& numbers);

    /// Whether frame `frame` is one of the few that are looked at.
    [[nodiscard]] bool Wants(std::int64_t frame) const noexcept { return frame % mStride == 0; }

    /// Cost: rendering and converting one frame of the clip.
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement);

    /// A spot; `pair.found` holds codes as they are, not yet in 8-bit units.
    struct Spot {
        ColorPair pair;
        read::SampleFormat format;
    };
    [[nodiscard]] const std::vector<Spot>& Spots() const noexcept { return mSpots; }

    /// The least alpha of all spots.
    [[nodiscard]] double LeastAlpha() const noexcept { return mLeastAlpha; }

private:
    struct Frames;
    void TakeSpot(const Frames& frames, const align::Box& box, int parity);

    reference::ClipFacts mFacts;
    reference::ClipPictures mPictures;
    std::int64_t mStride = 1;
    std::vector<align::Box> mBoxes;
    std::vector<Spot> mSpots;
    double mLeastAlpha = 1;
};

} // namespace tessel::verify::judge
