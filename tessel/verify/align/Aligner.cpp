#include "Aligner.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::align {
namespace {

/// Good enough to look no further.
constexpr double kPlainlyThere = 0.93;
constexpr int kMostSearches = 8;

Placement Plain(const reference::ClipFacts& clip)
{
    Placement placement;
    placement.clipWidth = clip.width;
    placement.clipHeight = clip.height;
    return placement;
}

} // namespace

Aligner::Aligner(const reference::ClipFacts& clip, bool printsNumbers)
    : mClip(clip), mPrintsNumbers(printsNumbers), mNumbers(clip.width, clip.height)
{
    mAlignment.frameCount = clip.frameCount;
    mAlignment.method = printsNumbers ? AlignmentMethod::Number : AlignmentMethod::Time;
}

void Aligner::FindPlacement(const read::Picture& picture)
{
    const read::ComponentView& luma = LumaOf(picture);
    std::optional<Placement> best;
    double score = 0;
    const auto consider = [&](Placement placement, double enough) {
        const Reading reading = mNumbers.Read(luma, placement);
        if (!reading.IsReadable()) {
            return;
        }
        double likeness = mNumbers.Likeness(luma, placement, reading.number);
        if (likeness < enough) {
            placement = mNumbers.Refine(luma, placement, reading.number);
            likeness = mNumbers.Likeness(luma, placement, mNumbers.Read(luma, placement).number);
        }
        if (likeness > score) {
            score = likeness;
            best = placement;
        }
    };
    for (const Orientation orientation : kOrientations) {
        consider(Placement::Stretched(mClip.width, mClip.height, orientation, picture.width, picture.height),
                 kPlainlyThere);
        if (orientation == Orientation::Upright && score >= kPlainlyThere) {
            break;
        }
    }
    if (score < kPlainlyThere && picture.index >= mNextSearch && mSearches < kMostSearches) {
        ++mSearches;
        mNextSearch = picture.index + (std::int64_t{4} << mSearches);
        if (const std::optional<Placement> found = mNumbers.Search(luma)) {
            consider(*found, 1);
        }
    }
    mAlignment.placement = best;
}

Reading Aligner::ReadNumber(const read::Picture& picture)
{
    if (!mAlignment.placement) {
        FindPlacement(picture);
    }
    return mAlignment.placement ? mNumbers.Read(LumaOf(picture), *mAlignment.placement) : Reading{};
}

const PictureRecord& Aligner::Take(const read::Picture& picture)
{
    PictureRecord record;
    record.seconds = picture.seconds;
    if (picture.seconds && !mFirstSeconds) {
        mFirstSeconds = picture.seconds;
    }
    if (mPrintsNumbers) {
        const Reading reading = ReadNumber(picture);
        record.likeness = static_cast<float>(reading.likeness);
        if (reading.IsReadable() && reading.number < mClip.frameCount) {
            record.frame = reading.number;
            record.confidence = static_cast<float>(reading.confidence);
        }
    } else if (picture.seconds) {
        const double frame = std::floor((*picture.seconds - *mFirstSeconds) * mClip.rate.Value() + 0.5);
        if (frame >= 0 && frame < static_cast<double>(mClip.frameCount)) {
            record.frame = static_cast<std::int64_t>(frame);
            record.confidence = 0.5F;
        }
    } else if (picture.index < mClip.frameCount) {
        record.frame = picture.index;
        record.confidence = 0.25F;
    }
    mAlignment.pictures.push_back(record);
    return mAlignment.pictures.back();
}

bool PrintsNumbers(const exporting::SignalSource& clip, const reference::ClipFacts& facts)
{
    const NumberReader numbers(facts.width, facts.height);
    if (!facts.hasPicture || !numbers.HasRoom()) {
        return false;
    }
    reference::ClipPictures pictures(clip, exporting::PictureLayout::Gbrp16, {}, exporting::ChromaRows::Frame);
    for (const std::int64_t frame : {std::int64_t{0}, facts.frameCount - 1}) {
        const read::Picture picture = pictures.Render(frame);
        const Reading reading = numbers.Read(LumaOf(picture), Plain(facts));
        if (!reading.IsReadable() || reading.number != frame) {
            return false;
        }
    }
    return true;
}

} // namespace tessel::verify::align
