/// Takes rows of a few pictures and compares them with every explanation.
#pragma once

#include "FieldDecision.h"

#include <tessel/verify/align/NumberReader.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace tessel::verify::judge {

/// Looks at the rows of the number's plate, whose edges tell every row from its neighbours, and beside it; at
/// all rows where the clip prints no number. Pictures are taken in pairs, because fields may come in turns.
/// Threads: one object, one thread at a time. Memory: some kilobytes for each of at most two dozen pictures.
class FieldSampler {
public:
    /// @param numbers  where the clip prints its numbers; null: it prints none. Borrowed.
    FieldSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                 const align::NumberReader* numbers);

    /// @param index  of the movie's picture
    [[nodiscard]] bool Wants(std::int64_t index) const noexcept;

    /// Only pictures whose rows are the clip's rows can tell; others are passed over.
    /// @param frame  which the picture shows; of two woven ones the earlier. @param placement  as exact as is
    /// known
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement,
              const read::PictureFacts& movie);

    [[nodiscard]] const std::vector<FieldEvidence>& Evidence() const noexcept { return mEvidence; }

    /// Whole rows that the frame lies lower in the pictures.
    [[nodiscard]] int RowsDown() const noexcept { return mRowsDown; }

private:
    void PlaceColumns();
    [[nodiscard]] const RowSamples& ClipRows(std::int64_t frame);

    reference::ClipFacts mFacts;
    const exporting::SignalSource& mClip;
    const align::NumberReader* mNumbers;
    std::int64_t mStride = 2;
    int mFirstRow = 0; ///< of the clip; an upper one
    int mRowCount = 0;
    std::vector<int> mColumns;
    std::optional<reference::ClipPictures> mPictures; ///< made for the movie's format by the first picture
    int mComponents = 1;                              ///< of each place that are compared
    std::map<std::int64_t, RowSamples> mKnown;        ///< the clip's rows, of a few frames
    int mRowsDown = 0;
    std::vector<FieldEvidence> mEvidence;
};

} // namespace tessel::verify::judge
