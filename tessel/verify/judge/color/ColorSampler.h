/// Pairs of colours, from the clip's pictures and the movie's.
#pragma once

#include "hypotheses/Hypothesis.h"

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Takes the means of spots where the clip's picture has no edges nearby, so that neither blur nor subsampled
/// chroma nor resampling matters. Field by field where the clip is interlaced. Threads: one object, one thread
/// at a time.
class ColorSampler {
public:
    /// @param numbers  where the clip prints numbers, whose black and white are spots of their own
    ColorSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                 const align::NumberReader& numbers);

    /// Whether frame `frame` is one of the few that are looked at.
    [[nodiscard]] bool Wants(std::int64_t frame) const noexcept { return frame % mStride == 0; }

    /// Cost: rendering one frame of the clip, and converting the rows of its spots.
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement);

    /// A spot; `pair.found` holds codes as they are, not yet in 8-bit units.
    struct Spot {
        ColorPair pair;
        read::SampleFormat format;
        double slope = 0; ///< how much R'G'B' changes from one pixel to the next
    };
    [[nodiscard]] const std::vector<Spot>& Spots() const noexcept { return mSpots; }

    /// Whether pictures were scaled or moved by parts of a pixel, so that a spot's place is known less well.
    [[nodiscard]] bool IsResampled() const noexcept { return mIsResampled; }

private:
    /// Where spots are: on a grid over the picture, and in the number, whose strokes are narrow.
    struct Place {
        align::Box box;
        bool isInNumber = false;
    };
    struct Frames;
    void TakeSpot(const Frames& frames, const Place& place, int parity);

    reference::ClipFacts mFacts;
    reference::ClipPictures mPictures;
    std::int64_t mStride = 1;
    std::vector<Place> mPlaces;
    std::vector<Spot> mSpots;
    bool mIsResampled = false;
};

} // namespace tessel::verify::judge
