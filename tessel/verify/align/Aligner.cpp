#include "Aligner.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tessel::verify::align {
namespace {

/// Good enough to look no further.
constexpr double kPlainlyThere = 0.93;
/// Less like a printed number than this is no place to read others from.
constexpr double kLeastLikeness = 0.7;
constexpr int kMostSearches = 8;

constexpr std::size_t kMostWaiting = 3;
constexpr std::int64_t kFieldsReadEvery = 5; // pictures
constexpr double kLikenessDrop = 0.02;
/// The same of the numbers on each field's rows, which have half the samples.
constexpr double kFieldsPlainlyThere = 0.85;

/// Zeros and eights look the same mirrored and turned by half.
bool TellsOrientation(std::int64_t number) noexcept
{
    for (; number > 0; number /= 10) {
        if (number % 10 != 0 && number % 10 != 8) {
            return true;
        }
    }
    return false;
}

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

std::optional<Aligner::Found> Aligner::FindPlacement(const read::Picture& picture)
{
    const read::ComponentView& luma = LumaOf(picture);
    const Placement plain =
        Placement::Stretched(mClip.width, mClip.height, Orientation::Upright, picture.width, picture.height);
    if (const std::optional<FieldReadings> fields = ReadFields(luma, plain)) {
        // Woven frames have a number on each field's rows, and their sum is none.
        const double likeness = std::min(fields->upper.likeness, fields->lower.likeness);
        if (fields->upper.number != fields->lower.number && likeness >= kFieldsPlainlyThere) {
            return Found{plain, std::min(fields->upper.number, fields->lower.number), 1};
        }
    }
    std::optional<Found> best;
    const auto consider = [&](Placement placement, double enough) {
        Reading reading = mNumbers.Read(luma, placement);
        if (!reading.IsReadable()) {
            return;
        }
        double likeness = mNumbers.Likeness(luma, placement, reading.number);
        if (likeness < enough) {
            const Placement refined = mNumbers.Refine(luma, placement, reading.number);
            const Reading again = mNumbers.Read(luma, refined);
            const double better = mNumbers.Likeness(luma, refined, again.number);
            // Rows that are not in their places move the best place by parts of a row; that is no other place.
            if (again.IsReadable() && better > likeness + kLikenessDrop) {
                placement = refined;
                reading = again;
                likeness = better;
            }
        }
        if (!best || likeness > best->likeness) {
            best = Found{placement, reading.number, likeness};
        }
    };
    for (const Orientation orientation : kOrientations) {
        consider(Placement::Stretched(mClip.width, mClip.height, orientation, picture.width, picture.height),
                 kPlainlyThere);
        if (best && best->likeness >= kPlainlyThere) {
            break; // upright comes first
        }
    }
    if ((!best || best->likeness < kPlainlyThere) && picture.index >= mNextSearch &&
        mSearches < kMostSearches) {
        ++mSearches;
        mNextSearch = mSearches < 3 ? 0 : picture.index + (std::int64_t{4} << mSearches);
        if (const std::optional<Placement> found = mNumbers.Search(luma)) {
            consider(*found, 1);
        }
    }
    return best && best->likeness >= kLeastLikeness ? best : std::nullopt;
}

void Aligner::ReadInto(const read::Picture& picture, PictureRecord& record)
{
    const Reading reading = mNumbers.Read(LumaOf(picture), *mAlignment.placement);
    record.likeness = static_cast<float>(reading.likeness);
    if (reading.IsReadable() && reading.number < mClip.frameCount) {
        record.frame = reading.number;
        record.confidence = static_cast<float>(reading.confidence);
    }
    // Two numbers on top of each other look less like one: their fields tell them apart.
    const bool isOdd = !reading.IsReadable() || reading.likeness < mUsualLikeness - kLikenessDrop;
    if (isOdd || mHasWovenPictures || picture.index % kFieldsReadEvery == 0) {
        ReadFieldsInto(picture, record);
    }
    mUsualLikeness = std::max(mUsualLikeness, reading.likeness);
}

std::optional<Aligner::FieldReadings> Aligner::ReadFields(const read::ComponentView& luma,
                                                          const Placement& placement) const
{
    FieldReadings fields;
    for (int parity = 0; parity < 2; ++parity) {
        Reading& field = parity == 0 ? fields.upper : fields.lower;
        field = mNumbers.ReadField(luma, placement, parity);
        if (!field.IsReadable() || field.number >= mClip.frameCount) {
            return std::nullopt;
        }
    }
    return fields;
}

void Aligner::ReadFieldsInto(const read::Picture& picture, PictureRecord& record)
{
    if (mAlignment.placement->orientation != Orientation::Upright) {
        return;
    }
    const std::optional<FieldReadings> fields = ReadFields(LumaOf(picture), *mAlignment.placement);
    if (!fields) {
        return;
    }
    record.fields[0] = fields->upper.number;
    record.fields[1] = fields->lower.number;
    if (fields->upper.number != fields->lower.number) {
        mHasWovenPictures = true;
        record.frame = std::min(fields->upper.number, fields->lower.number);
        record.confidence = static_cast<float>(std::min(fields->upper.confidence, fields->lower.confidence));
    }
}

void Aligner::Settle(const Placement& placement)
{
    mAlignment.placement = placement;
    const std::vector<Waiting> waitingOnes = std::move(mWaiting);
    mWaiting.clear();
    for (const Waiting& waiting : waitingOnes) {
        ReadInto(waiting.picture, mAlignment.pictures[waiting.record]);
    }
}

Alignment Aligner::Result()
{
    if (!mAlignment.placement && mProvisional) {
        Settle(*mProvisional);
    }
    return mAlignment;
}

Placement Aligner::PlacementFor(const read::Picture& picture) const
{
    return mAlignment.placement.value_or(
        Placement::Stretched(mClip.width, mClip.height, Orientation::Upright, picture.width, picture.height));
}

const PictureRecord& Aligner::Take(const read::Picture& picture)
{
    PictureRecord record;
    record.seconds = picture.seconds;
    if (picture.seconds && !mFirstSeconds) {
        mFirstSeconds = picture.seconds;
    }
    if (mPrintsNumbers) {
        if (!mAlignment.placement) {
            const std::optional<Found> found = FindPlacement(picture);
            const bool isPlain = found && found->placement.orientation == Orientation::Upright &&
                                 found->likeness >= kPlainlyThere;
            if (found && (isPlain || TellsOrientation(found->number))) {
                Settle(found->placement);
            } else if (found && mWaiting.size() < kMostWaiting) {
                mProvisional = found->placement;
                mWaiting.push_back({mAlignment.pictures.size(), picture});
            }
        }
        if (mAlignment.placement) {
            ReadInto(picture, record);
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
