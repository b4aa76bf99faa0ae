/// Finds pictures that are plainly less like the clip than their neighbours.
#pragma once

#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::verify::judge {

/// Compares a few rows of every picture with the clip's. Threads: one object, one thread at a time.
class FrameWatch {
public:
    FrameWatch(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

    /// Pictures of another size than the clip's are never suspicious. Cost: painting a frame of the clip, and
    /// some thirty thousand comparisons.
    /// @param movie  facts, complete by the first picture
    [[nodiscard]] bool IsSuspicious(const read::Picture& picture, std::int64_t frame,
                                    const read::PictureFacts& movie);

private:
    const exporting::SignalSource& mClip;
    reference::ClipFacts mFacts;
    std::optional<reference::ClipPictures> mPictures; ///< made for the movie's format by the first picture
    std::vector<float> mExpected;
    std::vector<float> mFound;
    double mUsual = 0; ///< mean difference of pictures so far, in 8-bit codes
    bool mHasUsual = false;
};

} // namespace tessel::verify::judge
