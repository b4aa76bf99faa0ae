/// Learns, picture by picture, which frame each one shows.
#pragma once

#include "Alignment.h"
#include "ColorTimeline.h"

#include <tessel/verify/reference/ClipPictures.h>

#include <memory>
#include <utility>
#include <vector>

namespace tessel::verify::align {

/// By the printed number where the clip prints one; else by colours that move from frame to frame; else by
/// presentation time, from which a wrong order cannot be seen. Threads: one object, one thread at a time.
class Aligner {
public:
    /// @param source         borrowed
    /// @param printsNumbers  whether the clip's own pictures have numbers that can be read
    Aligner(const exporting::SignalSource& source, const reference::ClipFacts& clip, bool printsNumbers);

    /// @param movie  facts of the movie's pictures, complete by the first one
    /// @return what is known of the picture now; also kept for `Result`.
    const PictureRecord& Take(const read::Picture& picture, const std::optional<read::PictureFacts>& movie);

    /// What may have been done to all colours of a movie. Clips without numbers are then aligned by the one
    /// that explains its pictures best.
    void SetColorChanges(std::vector<ColorChange> changes) { mColorChanges = std::move(changes); }

    /// Where frames lie in the pictures: as numbers told, else stretched over the whole picture.
    [[nodiscard]] Placement PlacementFor(const read::Picture& picture) const;

    [[nodiscard]] const NumberReader& Numbers() const noexcept { return mNumbers; }

    /// Everything, once the last picture is taken.
    [[nodiscard]] Alignment Result();

private:
    /// A place that was found, and the number that told.
    struct Found {
        Placement placement;
        std::int64_t number = 0;
        double likeness = 0;
    };
    [[nodiscard]] std::optional<Found> FindPlacement(const read::Picture& picture);
    /// Whether a number may be one of the clip's, also where some of its digits are cut off.
    [[nodiscard]] bool CanBe(const Reading& reading) const noexcept;
    /// Where the frame lies in a picture of another size by what both show.
    [[nodiscard]] std::optional<Placement> MatchContent(const read::Picture& picture) const;
    void Settle(const Placement& placement);
    void ReadInto(const read::Picture& picture, PictureRecord& record);
    void ReadFieldsInto(const read::Picture& picture, PictureRecord& record);

    struct FieldReadings {
        Reading upper;
        Reading lower;
    };
    /// Nothing where either cannot be read.
    [[nodiscard]] std::optional<FieldReadings> ReadFields(const read::ComponentView& luma,
                                                          const Placement& placement) const;
    void ReadTime(const read::Picture& picture, PictureRecord& record) const;
    /// @return false where time is left to go by
    bool ReadColors(const read::Picture& picture, const read::PictureFacts& movie, PictureRecord& record);
    void SettleColors();

    /// A picture that waits for a number that tells left from right.
    struct Waiting {
        std::size_t record = 0;
        read::Picture picture;
    };

    const exporting::SignalSource& mSource;
    reference::ClipFacts mClip;
    bool mPrintsNumbers;
    NumberReader mNumbers;
    Alignment mAlignment;
    std::int64_t mNextSearch = 0; ///< the picture in which the plate is searched next
    int mSearches = 0;
    std::optional<Placement> mProvisional; ///< from numbers that look alike in several orientations
    std::vector<Waiting> mWaiting;
    double mUsualLikeness = 0; ///< of numbers in this movie
    double mUsualWeakest = 0;  ///< of their least like digits
    bool mHasWovenPictures = false;
    bool mIsMatchAsked = false;
    std::optional<Placement> mMatched; ///< by content, where the number is cut off
    std::optional<double> mFirstSeconds;
    std::unique_ptr<ColorTimeline> mTimeline; ///< null: not asked yet, or colours do not tell frames
    bool mIsTimelineAsked = false;
    std::vector<ColorSignature> mSignatures; ///< of each picture
    std::vector<ColorChange> mColorChanges;
    std::int64_t mColorsRead = 0; ///< pictures whose colours told their frame at once
};

/// Whether numbers can be read in the clip's own pictures: its first and last one tell.
[[nodiscard]] bool PrintsNumbers(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

} // namespace tessel::verify::align
