#include "FieldSampler.h"

#include <tessel/verify/reference/MovieLayout.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr std::int64_t kPairs = 6;        // of neighbouring pictures, spread over the clip
constexpr std::size_t kMostPictures = 24; // where a movie is longer than its clip
constexpr int kSamples = 9000;            // of a picture, about
constexpr int kAroundPlate = 10;          // rows

/// Scales this near to 1 may be 1: a plate of thirty pixels does not tell.
constexpr double kUnscaled = 0.02;
/// Rows in the wrong places misplace the number by this much in pictures that have the clip's own size.
constexpr double kUnscaledWhole = 0.08;

double CodeOf(const read::ComponentView& view, int x, int y) noexcept
{
    const double full = view.isFloat ? 255.0 : std::exp2(8 - view.bits);
    return view.At(std::clamp(x, 0, view.width - 1), std::clamp(y, 0, view.height - 1)) * full;
}

/// How levels of a movie's component become the clip's.
struct LevelMap {
    double gain = 1;
    double offset = 0;
};

double MeanOf(const read::ComponentView& view, const align::Box& box) noexcept
{
    constexpr int kAcross = 5;
    double sum = 0;
    for (int i = 0; i < kAcross; ++i) {
        for (int j = 0; j < kAcross; ++j) {
            sum += CodeOf(view, static_cast<int>(box.left + (box.right - box.left) * (i + 0.5) / kAcross),
                          static_cast<int>(box.top + (box.bottom - box.top) * (j + 0.5) / kAcross));
        }
    }
    return sum / (kAcross * kAcross);
}

} // namespace

FieldSampler::FieldSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                           const align::NumberReader* numbers)
    : mFacts(facts), mClip(clip), mNumbers(numbers),
      mStride(std::max<std::int64_t>(2, facts.frameCount / kPairs / 2 * 2))
{
    const auto margin = static_cast<int>(kFieldMargin);
    mRowCount = facts.height / 2 * 2;
    if (numbers != nullptr) {
        const align::Box plate = numbers->Plate();
        mFirstRow = std::max(0, (static_cast<int>(plate.top) - kAroundPlate - margin) / 2 * 2);
        const int last = std::min(facts.height, static_cast<int>(plate.bottom) + kAroundPlate + margin);
        mRowCount = (last - mFirstRow) / 2 * 2;
    }
    if (facts.hasPicture && mRowCount > 2 * margin) {
        PlaceColumns();
    }
}

void FieldSampler::PlaceColumns()
{
    const int count = std::clamp(kSamples / mRowCount, 8, std::max(8, mFacts.width / 2));
    const double plateRight = mNumbers == nullptr ? 0 : mNumbers->Plate().right;
    const double plateLeft = mNumbers == nullptr ? 0 : mNumbers->Plate().left;
    const int onPlate = mNumbers == nullptr ? 0 : count * 3 / 4;
    const auto spread = [this](int columns, double left, double right) {
        for (int i = 0; i < columns; ++i) {
            // Even columns, where thinned chroma has its samples.
            mColumns.push_back(std::min(static_cast<int>(left + (right - left) * (i + 0.5) / columns) / 2 * 2,
                                        mFacts.width - 1));
        }
    };
    spread(onPlate, plateLeft, plateRight);
    spread(count - onPlate, plateRight, mFacts.width);
}

bool FieldSampler::Wants(std::int64_t index) const noexcept
{
    return !mColumns.empty() && index % mStride < 2 && mEvidence.size() < kMostPictures;
}

const RowSamples& FieldSampler::ClipRows(std::int64_t frame)
{
    const std::int64_t shown = std::clamp<std::int64_t>(frame, 0, mFacts.frameCount - 1);
    RowSamples& rows = mKnown[shown];
    if (rows.columns != 0) {
        return rows;
    }
    const read::Picture picture = mPictures->RenderRows(shown, mFirstRow, mRowCount);
    rows.columns = mColumns.size() * static_cast<std::size_t>(mComponents);
    for (int y = 0; y < mRowCount; ++y) {
        for (const int x : mColumns) {
            for (int part = 0; part < mComponents; ++part) {
                rows.values.push_back(static_cast<float>(CodeOf(picture.components[part], x, y)));
            }
        }
    }
    return rows;
}

void FieldSampler::Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement,
                        const read::PictureFacts& movie)
{
    const bool hasClipsSize = picture.width == mFacts.width && picture.height == mFacts.height;
    const double unscaled = hasClipsSize ? kUnscaledWhole : kUnscaled;
    if (placement.orientation != align::Orientation::Upright || std::abs(placement.scaleY - 1) > unscaled) {
        return;
    }
    // Where the rows lie, told in the middle of what is looked at.
    const double middle = mFirstRow + mRowCount / 2.0;
    const double down = placement.Map(align::Point{0, middle}).y - middle;
    const bool isWholeFrame = picture.height == mFacts.height && std::abs(down) < 2;
    const int rowsDown = isWholeFrame ? 0 : static_cast<int>(std::floor(down + 0.5));
    if (mFirstRow + rowsDown < 0 || mFirstRow + rowsDown + mRowCount > picture.height) {
        return;
    }
    if (!mPictures) {
        const bool isRgb = picture.format.isRgb;
        mPictures.emplace(mClip, isRgb ? exporting::PictureLayout::Gbrp16 : exporting::PictureLayout::Yuv444p16,
                          reference::CodingFor(mFacts, movie), exporting::ChromaRows::Frame);
        // A row of chroma that belongs to two rows cannot be ascribed to either.
        mComponents = picture.components[1] && (isRgb || picture.format.chromaShiftY == 0) ? 3 : 1;
    }
    const FieldReference clip{ClipRows(frame - 1), ClipRows(frame), ClipRows(frame + 1),
                              std::clamp(down - rowsDown, -2.0, 2.0)};

    RowSamples found;
    found.columns = mColumns.size() * static_cast<std::size_t>(mComponents);
    found.values.reserve(clip.now.values.size());
    LevelMap levels[3];
    if (mNumbers != nullptr) {
        const read::Picture whole = mPictures->RenderRows(frame, mFirstRow, mRowCount);
        const auto inRows = [this](align::Box box) {
            return align::Box{box.left, box.top - mFirstRow, box.right, box.bottom - mFirstRow};
        };
        for (int part = 0; part < mComponents; ++part) {
            if (part > 0 && !picture.format.isRgb) {
                break; // black and white have no chroma
            }
            const double black = MeanOf(whole.components[part], inRows(mNumbers->BlackSpot()));
            const double white = MeanOf(whole.components[part], inRows(mNumbers->InkSpot()));
            const double foundBlack = MeanOf(picture.components[part], placement.Map(mNumbers->BlackSpot()));
            const double foundWhite = MeanOf(picture.components[part], placement.Map(mNumbers->InkSpot()));
            if (std::abs(foundWhite - foundBlack) > 20) {
                levels[part].gain = (white - black) / (foundWhite - foundBlack);
                levels[part].offset = black - foundBlack * levels[part].gain;
            }
        }
    }
    for (int y = 0; y < mRowCount; ++y) {
        for (const int column : mColumns) {
            const double x = placement.Map(align::Point{column + 0.5, 0}).x - 0.5;
            // A placement is not exact; a whole pixel that is near is meant.
            const double near = std::floor(x + 0.5);
            const double place = std::abs(x - near) < 0.3 ? near : x;
            const auto left = static_cast<int>(std::floor(place));
            const double share = place - left;
            for (int part = 0; part < mComponents; ++part) {
                const read::ComponentView& view = picture.components[part];
                const bool isThin = part > 0 && !picture.format.isRgb && picture.format.chromaShiftX > 0;
                const int row = mFirstRow + rowsDown + y;
                const int shift = isThin ? picture.format.chromaShiftX : 0;
                double code = CodeOf(view, left >> shift, row);
                if (share > 0 && !isThin) {
                    code += share * (CodeOf(view, left + 1, row) - code);
                }
                found.values.push_back(static_cast<float>(levels[part].offset + levels[part].gain * code));
            }
        }
    }
    mRowsDown = rowsDown;
    mEvidence.push_back({picture.index, CompareFields(clip, found)});
    while (mKnown.size() > 4) {
        mKnown.erase(mKnown.begin());
    }
}

} // namespace tessel::verify::judge
