#include "DigitShapes.h"
#include "NumberInk.h"

#include <kestrel/pixmill/GlyphGeometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tessel::verify::align {
namespace {

/// In shades of grey.
struct SmallPicture {
    int width = 0;
    int height = 0;
    std::vector<double> values;

    [[nodiscard]] double At(int x, int y) const noexcept
    {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

/// The picture turned upright as if it had the orientation, each spot a mean of some samples.
SmallPicture Shrunk(const read::ComponentView& luma, const Placement& upright, double step)
{
    constexpr int kAcross = 3;
    SmallPicture grey;
    grey.width = static_cast<int>(upright.clipWidth / step);
    grey.height = static_cast<int>(upright.clipHeight / step);
    grey.values.reserve(static_cast<std::size_t>(grey.width) * static_cast<std::size_t>(grey.height));
    for (int y = 0; y < grey.height; ++y) {
        for (int x = 0; x < grey.width; ++x) {
            double sum = 0;
            for (int py = 0; py < kAcross; ++py) {
                for (int px = 0; px < kAcross; ++px) {
                    const Point at = upright.Map(
                        Point{(x + (px + 0.5) / kAcross) * step, (y + (py + 0.5) / kAcross) * step});
                    sum += luma.At(std::clamp(static_cast<int>(at.x), 0, luma.width - 1),
                                   std::clamp(static_cast<int>(at.y), 0, luma.height - 1));
                }
            }
            grey.values.push_back(sum);
        }
    }
    return grey;
}

/// A zero on its plate, `kRows` spots high: what every clip's number below a hundred thousand begins with.
class ZeroOnPlate {
public:
    static constexpr double kRows = 7; // spots in the height of a digit
    static constexpr double kMarginX = pixmill::kPlateMarginX * kRows;
    static constexpr double kMarginY = pixmill::kPlateMarginY * kRows;

    ZeroOnPlate()
    {
        width = static_cast<int>(kMarginX + pixmill::kGlyphAdvance * kRows);
        height = static_cast<int>(kRows + 2 * kMarginY);
        const double inkOffset = (pixmill::kGlyphAdvance - pixmill::kGlyphInkWidth) / 2;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                shape.push_back(InkAt(0, (x + 0.5 - kMarginX) / kRows - inkOffset, (y + 0.5 - kMarginY) / kRows,
                                      1 / kRows));
            }
        }
        static_cast<void>(Normalize(shape));
    }

    [[nodiscard]] double LikenessAt(const SmallPicture& grey, int left, int top) const noexcept
    {
        double sum = 0;
        double squares = 0;
        double product = 0;
        std::size_t at = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double value = grey.At(left + x, top + y);
                sum += value;
                squares += value * value;
                product += value * shape[at++];
            }
        }
        const double spread = squares - sum * sum / static_cast<double>(shape.size());
        return spread > 1e-6 ? product / std::sqrt(spread) : 0.0;
    }

    int width = 0;
    int height = 0;
    std::vector<double> shape;
};

} // namespace

std::optional<Placement> NumberReader::Search(const read::ComponentView& luma) const
{
    if (!HasRoom() || !luma) {
        return std::nullopt;
    }
    constexpr double kLeastZero = 0.55; // below it is nothing like a zero
    const ZeroOnPlate zero;
    struct Candidate {
        double likeness = 0;
        Placement placement;
    };
    std::vector<Candidate> candidates;
    for (const Orientation orientation : kOrientations) {
        const bool exchanges = ExchangesSides(orientation);
        Placement upright; // as if the movie's picture were the frame
        upright.clipWidth = exchanges ? luma.height : luma.width;
        upright.clipHeight = exchanges ? luma.width : luma.height;
        upright.orientation = orientation;
        const double filling = static_cast<double>(upright.clipHeight) / mClipHeight;
        for (double scale = 0.4 * filling; scale < 2.5 * filling; scale *= 1.1) {
            const double step = scale * mDigitHeight / ZeroOnPlate::kRows; // movie pixels of a spot
            if (step < 1) {
                continue;
            }
            const SmallPicture grey = Shrunk(luma, upright, step);
            double likeness = kLeastZero;
            Point corner;
            for (int top = 0; top + zero.height <= grey.height; ++top) {
                for (int left = 0; left + zero.width <= grey.width; ++left) {
                    const double here = zero.LikenessAt(grey, left, top);
                    if (here > likeness) {
                        likeness = here;
                        corner = {(left + ZeroOnPlate::kMarginX) * step, (top + ZeroOnPlate::kMarginY) * step};
                    }
                }
            }
            if (likeness > kLeastZero) {
                Placement at;
                at.clipWidth = mClipWidth;
                at.clipHeight = mClipHeight;
                at.orientation = orientation;
                at.scaleX = at.scaleY = scale;
                const Point found = upright.Map(corner);
                const Point cell = at.Map(Point{mCellLeft, mCellTop});
                at.offsetX = found.x - cell.x;
                at.offsetY = found.y - cell.y;
                candidates.push_back({likeness, at});
            }
        }
    }
    // The best place in each orientation, and what is nearly as good.
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.likeness > b.likeness; });
    std::array<int, kOrientations.size()> taken{};
    candidates.erase(
        std::remove_if(candidates.begin(), candidates.end(),
                       [&](const Candidate& candidate) {
                           return ++taken[static_cast<std::size_t>(candidate.placement.orientation)] > 2;
                       }),
        candidates.end());
    // Numbers begin with several zeros, and any of them may have been found: the one from which the first three
    // are zeros on the plate's left end is the first. Numbers of clips of a thousand frames and more are found
    // while they are small.
    constexpr int kZeros = 3;
    const Ink zeros = InkOf(0, std::min(kZeros, mDigits));
    for (Candidate& candidate : candidates) {
        const Placement start = candidate.placement;
        candidate.likeness = 0;
        for (int cell = 0; cell < mDigits - 1; ++cell) {
            Placement moved = start;
            const Point was = moved.Map(Point{0, 0});
            const Point is = moved.Map(Point{cell * mAdvance, 0});
            moved.offsetX -= is.x - was.x;
            moved.offsetY -= is.y - was.y;
            moved = Refine(luma, moved, zeros);
            const Reading reading = Read(luma, moved);
            const double likeness = Likeness(luma, moved, InkOf(reading.number, mDigits));
            if (likeness > candidate.likeness) {
                candidate.likeness = likeness;
                candidate.placement = moved;
            }
        }
    }
    std::sort(candidates.begin(), candidates.end(),
              [](const Candidate& a, const Candidate& b) { return a.likeness > b.likeness; });
    candidates.resize(std::min<std::size_t>(candidates.size(), 4));
    std::optional<Placement> found;
    double score = 0;
    for (const Candidate& candidate : candidates) {
        Placement placement = candidate.placement;
        for (int round = 0; round < 2; ++round) {
            placement = Refine(luma, placement, Read(luma, placement).number);
        }
        const Reading reading = Read(luma, placement);
        const double likeness = Likeness(luma, placement, reading.number);
        if (reading.IsReadable() && likeness > score) {
            score = likeness;
            found = placement;
        }
    }
    return found;
}

} // namespace tessel::verify::align
