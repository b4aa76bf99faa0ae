/// Keeps the frames that show best what differs.
#pragma once

#include <tessel/verify/align/Placement.h>
#include <tessel/verify/read/Movie.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/TellingFrame.h>

#include <cstdint>
#include <vector>

namespace tessel::verify::judge {

/// Threads: one object, one thread at a time. Memory: three small frames.
class TellingFrames {
public:
    TellingFrames(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

    /// Cost: rendering and converting one frame of the clip.
    void Take(const read::Picture& picture, std::int64_t frame, const read::PictureFacts& movie);

    /// The frames that differ most, in their order.
    [[nodiscard]] std::vector<TellingFrame> Result() const;

private:
    reference::ClipPictures mPictures;
    reference::ClipFacts mFacts;
    std::vector<TellingFrame> mKept;
};

} // namespace tessel::verify::judge
