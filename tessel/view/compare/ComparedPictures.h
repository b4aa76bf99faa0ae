/// A movie's picture and what differs from the clip's frame, for eyes.
#pragma once

#include <tessel/export/SignalSource.h>
#include <tessel/export/convert/Picture.h>
#include <tessel/verify/read/Movie.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace tessel::view {

/// Pictures in the layout `Bgra`.
struct ComparedPictures {
    exporting::Picture
        movie; ///< in the movie's own size, as players show it: by the matrix and range it announces
    exporting::Picture difference; ///< in the clip's size: 128 where equal, else 128 + gain × (movie - clip)
    /// Mean of the magnitudes of R', G' and B' differences; white is 255, and what lies beyond white and black
    /// counts.
    double meanOff = 0;
    double mostOff = 0;            ///< the largest of them
    bool isSampleBySample = false; ///< compared in the movie's own samples; else scaled, and by colour
};

/// Compares in the movie's own sample layout where the conversion has it and the sizes agree, so that a movie
/// that lost nothing shows no difference. Threads: one object, one thread at a time.
class PictureComparer {
public:
    /// @param clip  borrowed
    explicit PictureComparer(const exporting::SignalSource& clip);

    /// @param movie  facts, complete by the first picture
    /// @param gain   1 or more
    /// @throws importhost::HostError, exporting::ExportError
    [[nodiscard]] ComparedPictures Compare(const verify::read::Picture& picture,
                                           const verify::read::PictureFacts& movie, std::int64_t frame,
                                           int gain);

private:
    [[nodiscard]] verify::read::Picture ClipPicture(const verify::read::Picture& picture,
                                                    const verify::read::PictureFacts& movie,
                                                    std::int64_t frame);

    const exporting::SignalSource& mClip;
    verify::reference::ClipFacts mFacts;
    std::unique_ptr<verify::reference::ClipPictures> mPictures;
    bool mIsSampleBySample = false;
    bool mIsInterlaced = false;
};

} // namespace tessel::view
