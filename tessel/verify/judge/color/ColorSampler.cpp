#include "ColorSampler.h"

#include "hypotheses/Curves.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr std::int64_t kFrames = 12; // looked at, spread over the clip
constexpr int kColumns = 16;         // of spots
constexpr int kRows = 18;
constexpr int kPoints = 6;       // samples across a spot
constexpr double kClearance = 4; // pixels around a spot that must be free of edges
constexpr double kFlat = 0.12;   // most difference of R'G'B' inside a spot and its clearance
constexpr double kRamp = 1.2; // likewise from the picture's top to its bottom: gradients may run through spots
constexpr int kBothFields = -1;

double SignalOf(double value, bool isLinear) noexcept
{
    if (!isLinear) {
        return value;
    }
    return value < 0 ? -curves::SignalOf709(-value) : curves::SignalOf709(value);
}

/// A component's value at a place between samples, linear between the four around it. Places count from the
/// centre of the first sample; edges repeat.
double ValueAt(const read::ComponentView& view, double x, double y) noexcept
{
    const double left = std::floor(x);
    const double top = std::floor(y);
    const auto at = [&](double column, double row) {
        return view.At(std::clamp(static_cast<int>(column), 0, view.width - 1),
                       std::clamp(static_cast<int>(row), 0, view.height - 1));
    };
    const double right = x - left;
    const double down = y - top;
    return (at(left, top) * (1 - right) + at(left + 1, top) * right) * (1 - down) +
           (at(left, top + 1) * (1 - right) + at(left + 1, top + 1) * right) * down;
}

/// Rows and columns of the movie are the clip's, at most moved by whole pixels.
bool KeepsPixels(const align::Placement& placement) noexcept
{
    const auto isWhole = [](double value) { return std::abs(value - std::round(value)) < 0.05; };
    return std::abs(placement.scaleX - 1) < 1e-6 && std::abs(placement.scaleY - 1) < 1e-6 &&
           isWhole(placement.offsetX) && isWhole(placement.offsetY);
}

} // namespace

/// The same frame of the clip and of the movie.
struct ColorSampler::Frames {
    reference::ClipPictures::SparseFrame& clip;
    const read::Picture& movie;
    const align::Placement& placement;
    bool keepsPixels = true;

    [[nodiscard]] Triple RgbAt(int x, int y, bool isLinear) const
    {
        const read::Picture& row = clip.Row(y);
        return {SignalOf(row.components[0].At(x, 0), isLinear), SignalOf(row.components[1].At(x, 0), isLinear),
                SignalOf(row.components[2].At(x, 0), isLinear)};
    }

    /// The code of a component at a place of the movie's picture.
    /// @param parity  of the field whose rows count, or `kBothFields`
    [[nodiscard]] double CodeAt(std::size_t part, const align::Point& at, int parity) const noexcept
    {
        const read::SampleFormat& format = movie.format;
        const bool isChroma = part > 0 && !format.isRgb;
        const read::ComponentView& view = movie.components[part];
        if (!view) {
            // Grey pictures have no chroma.
            return isChroma ? std::exp2(format.bits - 1) : movie.components[0].At(0, 0);
        }
        const int shiftX = isChroma ? format.chromaShiftX : 0;
        const int shiftY = isChroma ? format.chromaShiftY : 0;
        if (!keepsPixels) {
            // Chroma lies on even columns and between rows.
            const double y = shiftY == 0 ? at.y - 0.5 : at.y / (1 << shiftY) - 0.5;
            return ValueAt(view, (at.x - 0.5) / (1 << shiftX), y);
        }
        const int row = static_cast<int>(at.y);
        // Rows of a field share chroma with rows of the same field.
        const int chromaRow =
            parity == kBothFields || shiftY == 0 ? row >> shiftY : (row >> (shiftY + 1)) * 2 + parity;
        return view.At(std::min(static_cast<int>(at.x) >> shiftX, view.width - 1),
                       std::min(chromaRow, view.height - 1));
    }
};

ColorSampler::ColorSampler(const exporting::SignalSource& clip, const reference::ClipFacts& facts,
                           const align::NumberReader& numbers)
    : mFacts(facts), mPictures(clip, exporting::PictureLayout::Gbrapf32, {}, exporting::ChromaRows::Frame),
      mStride(std::max<std::int64_t>(1, facts.frameCount / kFrames))
{
    for (int row = 0; row < kRows; ++row) {
        for (int column = 0; column < kColumns; ++column) {
            const double width = static_cast<double>(facts.width) / kColumns;
            const double height = static_cast<double>(facts.height) / kRows;
            mPlaces.push_back(
                {{(column + 0.2) * width, (row + 0.2) * height, (column + 0.8) * width, (row + 0.8) * height},
                 false});
        }
    }
    if (numbers.HasRoom()) {
        mPlaces.push_back({numbers.BlackSpot(), true});
        mPlaces.push_back({numbers.InkSpot(), true});
    }
}

void ColorSampler::TakeSpot(const Frames& frames, const Place& place, int parity)
{
    if (place.isInNumber && !frames.keepsPixels) {
        return; // filters reach across its strokes
    }
    const align::Box& box = place.box;
    const bool isLinear = mFacts.frameKind.linear;
    const auto inRow = [&](double y) {
        const int row = std::clamp(static_cast<int>(y), 0, mFacts.height - 1);
        return parity == kBothFields ? row : std::min((row & ~1) | parity, mFacts.height - 1);
    };
    // No edges nearby, as far as filters of a smaller picture reach. The number's own spots lie between edges
    // without colour.
    const double scale = std::min(frames.placement.scaleX, frames.placement.scaleY);
    const double clearance = place.isInNumber ? 0 : kClearance / std::clamp(scale, 0.25, 1.0);
    Triple least{1e9, 1e9, 1e9};
    Triple most{-1e9, -1e9, -1e9};
    for (int i = 0; i <= kPoints; ++i) {
        for (int j = 0; j <= kPoints; ++j) {
            const double x = box.left - clearance + (box.right - box.left + 2 * clearance) * i / kPoints;
            const double y = box.top - clearance + (box.bottom - box.top + 2 * clearance) * j / kPoints;
            const Triple rgb =
                frames.RgbAt(std::clamp(static_cast<int>(x), 0, mFacts.width - 1), inRow(y), isLinear);
            for (std::size_t part = 0; part < 3; ++part) {
                least[part] = std::min(least[part], rgb[part]);
                most[part] = std::max(most[part], rgb[part]);
            }
        }
    }
    const double rows = box.bottom - box.top + 2 * clearance;
    Spot spot;
    for (std::size_t part = 0; part < 3; ++part) {
        const double range = most[part] - least[part];
        if (range > std::max(kFlat, kRamp * rows / mFacts.height)) {
            return;
        }
        spot.slope = std::max(spot.slope, range / rows);
    }
    spot.format = frames.movie.format;
    spot.pair.alpha = 0;
    spot.pair.foundAlpha = frames.movie.components[3] ? 0 : 1;
    for (int i = 0; i < kPoints; ++i) {
        for (int j = 0; j < kPoints; ++j) {
            const int x = static_cast<int>(box.left + (box.right - box.left) * (i + 0.5) / kPoints);
            const int y = inRow(box.top + (box.bottom - box.top) * (j + 0.5) / kPoints);
            const align::Point at = frames.placement.Map(align::Point{x + 0.5, y + 0.5});
            if (at.x < 0 || at.y < 0 || at.x >= frames.movie.width || at.y >= frames.movie.height) {
                return;
            }
            constexpr double kShare = 1.0 / (kPoints * kPoints);
            const Triple rgb = frames.RgbAt(x, y, isLinear);
            const int otherRow = parity == kBothFields ? y : std::min(y ^ 1, mFacts.height - 1);
            const Triple otherRgb = frames.RgbAt(x, otherRow, isLinear);
            const read::ComponentView& alpha = frames.clip.Row(y).components[3];
            spot.pair.alpha += (alpha ? alpha.At(x, 0) : 1) * kShare;
            for (std::size_t part = 0; part < 3; ++part) {
                spot.pair.rgb[part] += rgb[part] * kShare;
                spot.pair.otherField[part] += otherRgb[part] * kShare;
                spot.pair.found[part] += frames.CodeAt(part, at, parity) * kShare;
            }
            if (const read::ComponentView& found = frames.movie.components[3]) {
                const double full =
                    found.isFloat ? 1.0 : static_cast<double>((1U << static_cast<unsigned>(found.bits)) - 1U);
                spot.pair.foundAlpha +=
                    found.At(static_cast<int>(at.x), static_cast<int>(at.y)) / full * kShare;
            }
        }
    }
    mSpots.push_back(spot);
}

void ColorSampler::Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement)
{
    reference::ClipPictures::SparseFrame clip(mPictures, frame);
    const Frames frames{clip, picture, placement, KeepsPixels(placement)};
    mIsResampled = mIsResampled || !frames.keepsPixels;
    const bool keepsRows = placement.orientation == align::Orientation::Upright &&
                           std::abs(placement.scaleY - 1) < 1e-6 && std::abs(placement.offsetY) < 0.25;
    const bool byField = mFacts.fields != read::FieldOrder::Progressive && keepsRows;
    for (const Place& place : mPlaces) {
        if (byField) {
            TakeSpot(frames, place, 0);
            TakeSpot(frames, place, 1);
        } else {
            TakeSpot(frames, place, kBothFields);
        }
    }
}

} // namespace tessel::verify::judge
