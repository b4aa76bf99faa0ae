/// Learns, picture by picture, which frame each one shows.
#pragma once

#include "Alignment.h"

#include <tessel/verify/reference/ClipPictures.h>

namespace tessel::verify::align {

/// By the printed number where the clip prints one; else by presentation time, which says nothing about the
/// order. Threads: one object, one thread at a time.
class Aligner {
public:
    /// @param printsNumbers  whether the clip's own pictures have numbers that can be read
    Aligner(const reference::ClipFacts& clip, bool printsNumbers);

    /// @return what is known of the picture now; also kept for `Result`.
    const PictureRecord& Take(const read::Picture& picture);

    /// Where frames lie in the pictures, as soon as a number was read.
    [[nodiscard]] const std::optional<Placement>& FoundPlacement() const noexcept
    {
        return mAlignment.placement;
    }

    [[nodiscard]] const NumberReader& Numbers() const noexcept { return mNumbers; }

    [[nodiscard]] Alignment Result() const { return mAlignment; }

private:
    [[nodiscard]] Reading ReadNumber(const read::Picture& picture);
    void FindPlacement(const read::Picture& picture);

    reference::ClipFacts mClip;
    bool mPrintsNumbers;
    NumberReader mNumbers;
    Alignment mAlignment;
    std::int64_t mNextSearch = 0; ///< the picture in which the plate is searched next
    int mSearches = 0;
    std::optional<double> mFirstSeconds;
};

/// Whether numbers can be read in the clip's own pictures: its first and last one tell.
[[nodiscard]] bool PrintsNumbers(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

} // namespace tessel::verify::align
