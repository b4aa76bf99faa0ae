#include "Aligner.h"

#include "FrameMatch.h"

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

constexpr int kDigits = 6; // of a number
constexpr std::size_t kMostWaiting = 3;
constexpr std::int64_t kFieldsReadEvery = 5; // pictures
constexpr double kLikenessDrop = 0.02;
constexpr double kWeakestDrop = 0.05; // of a single digit
/// The same of the numbers on each field's rows, which have half the samples.
constexpr double kFieldsPlainlyThere = 0.85;

/// Colours that are nearer than this to the clip's, in 8-bit codes, are the clip's.
constexpr double kSameColors = 2.5;
constexpr double kSure = 0.9;
/// How near readings usually are to whole frames where they can be trusted.
constexpr double kNearFrames = 0.12;
constexpr double kNearlyAll = 0.9; // of the pictures

std::int64_t FrameOf(const ColorReading& reading, std::int64_t frameCount) noexcept
{
    return std::clamp<std::int64_t>(std::llround(reading.frame), 0, frameCount - 1);
}

/// What nine tenths of the readings keep of a measure; with a half, its median.
template <class Measure>
double Usual(const std::vector<ColorReading>& readings, const Measure& measure, double share = 0.5)
{
    std::vector<double> values;
    values.reserve(readings.size());
    for (const ColorReading& reading : readings) {
        values.push_back(measure(reading));
    }
    const auto place = static_cast<std::ptrdiff_t>(share * static_cast<double>(values.size()));
    std::nth_element(values.begin(), values.begin() + place, values.end());
    return values[static_cast<std::size_t>(place)];
}

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

Aligner::Aligner(const exporting::SignalSource& source, const reference::ClipFacts& clip, bool printsNumbers)
    : mSource(source), mClip(clip), mPrintsNumbers(printsNumbers), mNumbers(clip.width, clip.height)
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
        // Woven frames have a number on each field's rows, and the sum of the rows is not a number.
        const double likeness = std::min(fields->upper.likeness, fields->lower.likeness);
        if (fields->upper.number != fields->lower.number && likeness >= kFieldsPlainlyThere) {
            return Found{plain, std::min(fields->upper.number, fields->lower.number), 1};
        }
    }
    std::optional<Found> best;
    const auto consider = [&](Placement placement, double enough) {
        Reading reading = mNumbers.Read(luma, placement);
        if (!reading.IsReadable() || !CanBe(reading)) {
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
    if (!best && !mIsMatchAsked) {
        mIsMatchAsked = true;
        mMatched = MatchContent(picture);
    }
    if (!best && mMatched) {
        consider(*mMatched, 0);
        return best;
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

bool Aligner::CanBe(const Reading& reading) const noexcept
{
    std::int64_t most = 1; // numbers that the digits which are seen can tell
    for (int digit = reading.hidden; digit < kDigits; ++digit) {
        most *= 10;
    }
    return reading.number < mClip.frameCount && (reading.hidden == 0 || mClip.frameCount <= most);
}

std::optional<Placement> Aligner::MatchContent(const read::Picture& picture) const
{
    reference::ClipPictures pictures(mSource, exporting::PictureLayout::Gbrp16, {},
                                     exporting::ChromaRows::Frame);
    const read::Picture frame = pictures.Render(std::min(picture.index, mClip.frameCount - 1));
    return MatchFrame(LumaOf(frame), LumaOf(picture));
}

void Aligner::ReadInto(const read::Picture& picture, PictureRecord& record)
{
    const Reading reading = mNumbers.Read(LumaOf(picture), *mAlignment.placement);
    record.likeness = static_cast<float>(reading.likeness);
    if (reading.IsReadable() && CanBe(reading)) {
        record.frame = reading.number;
        record.confidence = static_cast<float>(reading.confidence);
    }
    // Two numbers on top of each other look less like one: their fields tell them apart.
    // Where only the last digit differs, that one looks odd.
    const bool isOdd = !reading.IsReadable() || reading.likeness < mUsualLikeness - kLikenessDrop ||
                       reading.weakest < mUsualWeakest - kWeakestDrop;
    if (isOdd || mHasWovenPictures || picture.index % kFieldsReadEvery == 0) {
        ReadFieldsInto(picture, record);
    }
    mUsualLikeness = std::max(mUsualLikeness, reading.likeness);
    mUsualWeakest = std::max(mUsualWeakest, reading.weakest);
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

void Aligner::ReadTime(const read::Picture& picture, PictureRecord& record) const
{
    if (!picture.seconds) {
        if (picture.index < mClip.frameCount) {
            record.frame = picture.index;
            record.confidence = 0.25F;
        }
        return;
    }
    const double frame = std::floor((*picture.seconds - *mFirstSeconds) * mClip.rate.Value() + 0.5);
    if (frame >= 0 && frame < static_cast<double>(mClip.frameCount)) {
        record.frame = static_cast<std::int64_t>(frame);
        record.confidence = 0.5F;
    }
}

bool Aligner::ReadColors(const read::Picture& picture, const read::PictureFacts& movie, PictureRecord& record)
{
    if (!mIsTimelineAsked) {
        mIsTimelineAsked = true;
        auto timeline = std::make_unique<ColorTimeline>(mSource, mClip, movie);
        if (timeline->Tells()) {
            mTimeline = std::move(timeline);
        }
    }
    if (!mTimeline) {
        return false;
    }
    mSignatures.push_back(ColorTimeline::SignatureOf(picture));
    const std::optional<ColorReading> reading = mTimeline->Read(mSignatures.back());
    if (!reading || reading->distance > kSameColors || ConfidenceOf(*reading) < kSure) {
        // Until all pictures are known, colours that were changed are compared by time. Where most are as they
        // should be, this picture is not one of the clip's.
        return 2 * mColorsRead > static_cast<std::int64_t>(mSignatures.size());
    }
    ++mColorsRead;
    record.frame = FrameOf(*reading, mClip.frameCount);
    record.confidence = static_cast<float>(ConfidenceOf(*reading));
    return true;
}

void Aligner::SettleColors()
{
    const auto readAll = [&](const ColorTimeline& timeline) {
        std::vector<ColorReading> readings;
        readings.reserve(mSignatures.size());
        for (const ColorSignature& signature : mSignatures) {
            readings.push_back(timeline.Read(signature).value_or(ColorReading{0, 1e9, 1e9}));
        }
        return readings;
    };
    const auto distance = [](const ColorReading& reading) { return reading.distance; };
    std::vector<ColorReading> readings = readAll(*mTimeline);
    const bool areChanged = Usual(readings, distance) > kSameColors;
    for (std::size_t i = 0; areChanged && i < mColorChanges.size(); ++i) {
        std::vector<ColorReading> other = readAll(mTimeline->Changed(mColorChanges[i]));
        if (Usual(other, distance) < Usual(readings, distance)) {
            readings = std::move(other);
        }
    }
    const double usual = Usual(readings, distance);
    const auto offFrame = [](const ColorReading& reading) {
        return std::abs(reading.frame - std::round(reading.frame));
    };
    // Readings between frames come from noise, or from colours that were changed in some other way. Then time
    // is left to go by.
    const bool isNear = Usual(readings, offFrame) <= kNearFrames &&
                        (!areChanged || Usual(readings, distance, kNearlyAll) <= kSameColors);
    if (usual > kSameColors || !isNear) {
        return;
    }
    mAlignment.method = AlignmentMethod::Color;
    for (std::size_t i = 0; i < readings.size(); ++i) {
        PictureRecord& record = mAlignment.pictures[i];
        const bool isClips = readings[i].distance <= 3 * usual + kSameColors;
        record.confidence = isClips ? static_cast<float>(ConfidenceOf(readings[i])) : 0;
        record.frame = isClips ? FrameOf(readings[i], mClip.frameCount) : -1;
    }
}

Alignment Aligner::Result()
{
    if (mTimeline && !mSignatures.empty()) {
        SettleColors();
    }
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

const PictureRecord& Aligner::Take(const read::Picture& picture, const std::optional<read::PictureFacts>& movie)
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
            if (found && (isPlain || mMatched || TellsOrientation(found->number))) {
                Settle(found->placement);
            } else if (found && mWaiting.size() < kMostWaiting) {
                mProvisional = found->placement;
                mWaiting.push_back({mAlignment.pictures.size(), picture});
            } else if (mMatched) {
                // The number is cut off: what both show tells the place, and time the frame.
                mAlignment.placement = mMatched;
                mAlignment.isPlacedByContent = true;
                mAlignment.method = AlignmentMethod::Time;
                mPrintsNumbers = false;
            }
        }
        if (mAlignment.placement && mPrintsNumbers) {
            ReadInto(picture, record);
        }
    }
    if (!mPrintsNumbers && (mAlignment.isPlacedByContent || !movie || !ReadColors(picture, *movie, record))) {
        ReadTime(picture, record);
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
