#include "ColorSampler.h"

#include "Curves.h"

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
constexpr int kBothFields = -1;

double SignalOf(double value, bool isLinear) noexcept
{
    if (!isLinear) {
        return value;
    }
    return value < 0 ? -curves::SignalOf709(-value) : curves::SignalOf709(value);
}

} // namespace

/// The same frame of the clip and of the movie.
struct ColorSampler::Frames {
    const read::Picture& clip;
    const read::Picture& movie;
    const align::Placement& placement;

    [[nodiscard]] Triple RgbAt(int x, int y, bool isLinear) const noexcept
    {
        return {SignalOf(clip.components[0].At(x, y), isLinear),
                SignalOf(clip.components[1].At(x, y), isLinear),
                SignalOf(clip.components[2].At(x, y), isLinear)};
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
            mBoxes.push_back(
                {(column + 0.2) * width, (row + 0.2) * height, (column + 0.8) * width, (row + 0.8) * height});
        }
    }
    if (numbers.HasRoom()) {
        mBoxes.push_back(numbers.BlackSpot());
        mBoxes.push_back(numbers.InkSpot());
    }
}

void ColorSampler::TakeSpot(const Frames& frames, const align::Box& box, int parity)
{
    const bool isLinear = mFacts.frameKind.linear;
    const auto inRow = [&](double y) {
        const int row = std::clamp(static_cast<int>(y), 0, mFacts.height - 1);
        return parity == kBothFields ? row : std::min((row & ~1) | parity, mFacts.height - 1);
    };
    // No edges nearby. The number's own spots are narrow and lie between edges without colour.
    const bool isNarrow = box.right - box.left < 2 * kClearance;
    const double clearance = isNarrow ? 0 : kClearance;
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
    for (std::size_t part = 0; part < 3; ++part) {
        if (most[part] - least[part] > kFlat) {
            return;
        }
    }
    Spot spot;
    spot.format = frames.movie.format;
    spot.pair.alpha = 0;
    spot.pair.foundAlpha = 0;
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
            const read::ComponentView& alpha = frames.clip.components[3];
            spot.pair.alpha += (alpha ? alpha.At(x, y) : 1) * kShare;
            for (std::size_t part = 0; part < 3; ++part) {
                spot.pair.rgb[part] += rgb[part] * kShare;
                const bool isChroma = part > 0 && !frames.movie.format.isRgb;
                const int shiftX = isChroma ? frames.movie.format.chromaShiftX : 0;
                const int shiftY = isChroma ? frames.movie.format.chromaShiftY : 0;
                const int row = static_cast<int>(at.y);
                // Rows of a field share chroma with rows of the same field.
                const int chromaRow =
                    parity == kBothFields || shiftY == 0 ? row >> shiftY : (row >> (shiftY + 1)) * 2 + parity;
                const read::ComponentView& found = frames.movie.components[part];
                const read::ComponentView& view = found ? found : frames.movie.components[0];
                spot.pair.found[part] += view.At(std::min(static_cast<int>(at.x) >> shiftX, view.width - 1),
                                                 std::min(chromaRow, view.height - 1)) *
                                         kShare;
            }
            if (const read::ComponentView& found = frames.movie.components[3]) {
                const double full =
                    found.isFloat ? 1.0 : static_cast<double>((1U << static_cast<unsigned>(found.bits)) - 1U);
                spot.pair.foundAlpha +=
                    found.At(static_cast<int>(at.x), static_cast<int>(at.y)) / full * kShare;
            }
        }
    }
    mLeastAlpha = std::min(mLeastAlpha, spot.pair.alpha);
    mSpots.push_back(spot);
}

void ColorSampler::Take(const read::Picture& picture, std::int64_t frame, const align::Placement& placement)
{
    const read::Picture clip = mPictures.Render(frame);
    const Frames frames{clip, picture, placement};
    const bool keepsRows = placement.orientation == align::Orientation::Upright &&
                           std::abs(placement.scaleY - 1) < 1e-6 && std::abs(placement.offsetY) < 0.25;
    const bool byField = mFacts.fields != read::FieldOrder::Progressive && keepsRows;
    for (const align::Box& box : mBoxes) {
        if (byField) {
            TakeSpot(frames, box, 0);
            TakeSpot(frames, box, 1);
        } else {
            TakeSpot(frames, box, kBothFields);
        }
    }
}

} // namespace tessel::verify::judge
