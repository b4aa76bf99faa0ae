/// Judges what became of the two fields of pictures.
#pragma once

#include <tessel/verify/align/Alignment.h>
#include <tessel/verify/read/MovieFacts.h>
#include <tessel/verify/reference/ClipPictures.h>
#include <tessel/verify/report/Findings.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace tessel::verify::judge {

/// How much of the clip's upper field is in a movie's upper and lower rows: 1 and 0 where all is well, 0 and 1
/// where fields are exchanged, a half each where they are blended, twice the same where one is lost.
struct FieldMix {
    double inUpper = 1;
    double inLower = 0;
};

/// Looks at the luma of both fields in some pictures of an interlaced clip whose fields differ.
/// Threads: one object, one thread at a time.
class FieldSampler {
public:
    FieldSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts);

    /// @param index  of the movie's picture. Its neighbours are wanted too, because fields may alternate.
    [[nodiscard]] bool Wants(std::int64_t index) const noexcept { return mIsInterlaced && index % mStride < 2; }

    /// Only pictures whose rows are the clip's rows can tell; others are passed over.
    void Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement);

    /// The mean luma of each field's rows.
    struct Sample {
        double clipUpper = 0; ///< R'G'B' luma by BT.709, 0..1
        double clipLower = 0;
        double movieUpper = 0; ///< share of the code range
        double movieLower = 0;
    };
    [[nodiscard]] const std::vector<Sample>& Samples() const noexcept { return mSamples; }

private:
    reference::ClipPictures mPictures;
    reference::ClipFacts mFacts;
    bool mIsInterlaced;
    std::int64_t mStride;
    std::vector<Sample> mSamples;
};

/// The mix of one sample; nothing where the clip's fields are too much alike to tell.
/// @param isFull  the movie's codes use the whole range
[[nodiscard]] std::optional<FieldMix> MixOf(const FieldSampler::Sample& sample, bool isFull) noexcept;

struct FieldsCase {
    const FieldSampler& sampler;
    const reference::ClipFacts& clip;
    const read::PictureFacts& movie;
    const align::Alignment& alignment; ///< with the numbers of the fields where they were read
};

/// Puts findings of all `fields.` checks.
void JudgeFields(const FieldsCase& given, Findings& findings);

} // namespace tessel::verify::judge
