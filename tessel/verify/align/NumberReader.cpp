#include "NumberReader.h"

#include "DigitShapes.h"

#include <kestrel/pixmill/GlyphGeometry.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessel::verify::align {
namespace {

constexpr int kPoints = 3; // samples across each spot of the grid

// Where clips print their numbers, as fractions of the frame.
constexpr float kNumberHeight = 0.12F;
constexpr float kNumberPosition = 0.05F;

// A digit of which less than this share lies in the picture is not read.
constexpr double kLeastSeen = 0.5;

// Neighbouring spots of a blurred or blocky digit err together, so that fewer of them count.
constexpr double kIndependentSpots = NumberReader::kGridX * NumberReader::kGridY / 8.0;

/// Digits of more pixels in height than this have more of them than the grid has points.
constexpr double kLargeDigit = 64;

/// Between pixel centres, edges repeated.
double Interpolated(const read::ComponentView& view, Point at) noexcept
{
    const double x = std::clamp(at.x - 0.5, 0.0, view.width - 1.0);
    const double y = std::clamp(at.y - 0.5, 0.0, view.height - 1.0);
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const int right = std::min(left + 1, view.width - 1);
    const int bottom = std::min(top + 1, view.height - 1);
    const double shareX = x - left;
    const double shareY = y - top;
    const double upper = view.At(left, top) * (1 - shareX) + view.At(right, top) * shareX;
    const double lower = view.At(left, bottom) * (1 - shareX) + view.At(right, bottom) * shareX;
    return upper * (1 - shareY) + lower * shareY;
}

double FullScale(const read::ComponentView& view) noexcept
{
    return view.isFloat ? 1.0 : static_cast<double>((1U << static_cast<unsigned>(view.bits)) - 1U);
}

double Product(const std::vector<double>& a, const std::vector<double>& b) noexcept
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

/// The chosen values, normalised among themselves, and 0 in place of the others.
std::vector<double> NormalizedWhere(const std::vector<bool>& chosen, const std::vector<double>& values)
{
    std::vector<double> some;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (chosen[i]) {
            some.push_back(values[i]);
        }
    }
    static_cast<void>(Normalize(some));
    std::vector<double> all(values.size(), 0.0);
    std::size_t next = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (chosen[i]) {
            all[i] = some[next++];
        }
    }
    return all;
}

/// A small grey picture.
struct Grey {
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
Grey Shrunk(const read::ComponentView& luma, const Placement& upright, double step)
{
    constexpr int kAcross = 3;
    Grey grey;
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

    [[nodiscard]] double LikenessAt(const Grey& grey, int left, int top) const noexcept
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

struct NumberReader::Cell {
    std::vector<double> spots; // normalised; 0 outside the picture
    std::vector<bool> isSeen;  // empty: all of them
    double lowest = 0;
    double highest = 0;
};

bool Reading::IsReadable() const noexcept
{
    // Below this likeness anything with an edge resembles some digit; below this contrast noise is stretched.
    return confidence >= 0.9 && likeness >= 0.6 && weakest >= 0.45 && contrast >= 0.03;
}

NumberReader::NumberReader(int clipWidth, int clipHeight, int digits)
    : mClipWidth(clipWidth), mClipHeight(clipHeight), mDigits(digits)
{
    if (clipWidth < 1 || clipHeight < 1) {
        return;
    }
    const pixmill::NumberLayout layout = pixmill::LayOutNumber(
        static_cast<std::uint32_t>(clipWidth), static_cast<std::uint32_t>(clipHeight),
        static_cast<std::uint32_t>(digits), kNumberHeight, kNumberPosition, kNumberPosition);
    mDigitHeight = layout.digitHeight;
    if (mDigitHeight == 0) {
        return;
    }
    mAdvance = layout.advance;
    mCellLeft = layout.CellLeft(0);
    mCellTop = layout.CellTop();
    mPlate = {static_cast<double>(layout.left), static_cast<double>(layout.top),
              static_cast<double>(layout.left + layout.width), static_cast<double>(layout.top + layout.height)};
}

Box NumberReader::BlackSpot() const noexcept
{
    const double margin = mCellLeft - mPlate.left;
    return {mPlate.left + margin / 4, mCellTop, mCellLeft - margin / 4, mCellTop + mDigitHeight};
}

Box NumberReader::InkSpot() const noexcept
{
    // The zero's left stroke runs straight from 0.28 to 0.72 of its height, 0.07 from its box's edge.
    const double middle =
        mCellLeft + (mAdvance - pixmill::kGlyphInkWidth * mDigitHeight) / 2 + 0.07 * mDigitHeight;
    const double half = pixmill::kGlyphThickness * mDigitHeight / 4;
    return {middle - half, mCellTop + 0.32 * mDigitHeight, middle + half, mCellTop + 0.68 * mDigitHeight};
}

NumberReader::Cell NumberReader::SampleCell(const read::ComponentView& luma, const Placement& placement,
                                            int index) const
{
    Cell cell;
    cell.spots.reserve(static_cast<std::size_t>(kGridX * kGridY));
    const double left = mCellLeft + index * mAdvance;
    // Where a point moves by more than a pixel to the next one, the nearest pixel is as good as any between.
    const bool isLarge = mDigitHeight * std::min(placement.scaleX, placement.scaleY) > kLargeDigit;
    const auto valueAt = [&](Point at) {
        return isLarge ? luma.At(std::clamp(static_cast<int>(at.x), 0, luma.width - 1),
                                 std::clamp(static_cast<int>(at.y), 0, luma.height - 1))
                       : Interpolated(luma, at);
    };
    const auto isInside = [&](Point at) {
        return at.x >= 0 && at.y >= 0 && at.x < luma.width && at.y < luma.height;
    };
    const bool isWhole = isInside(placement.Map(Point{left, mCellTop})) &&
                         isInside(placement.Map(Point{left + mAdvance, mCellTop + mDigitHeight}));
    for (int row = 0; row < kGridY; ++row) {
        for (int column = 0; column < kGridX; ++column) {
            if (!isWhole) {
                const Point middle = placement.Map(Point{left + (column + 0.5) / kGridX * mAdvance,
                                                         mCellTop + (row + 0.5) / kGridY * mDigitHeight});
                cell.isSeen.push_back(isInside(middle));
            }
            double sum = 0;
            for (int py = 0; py < kPoints; ++py) {
                for (int px = 0; px < kPoints; ++px) {
                    const double x = left + (column + (px + 0.5) / kPoints) / kGridX * mAdvance;
                    const double y = mCellTop + (row + (py + 0.5) / kPoints) / kGridY * mDigitHeight;
                    sum += valueAt(placement.Map(Point{x, y}));
                }
            }
            cell.spots.push_back(sum / (kPoints * kPoints));
        }
    }
    const auto [low, high] = std::minmax_element(cell.spots.begin(), cell.spots.end());
    cell.lowest = *low;
    cell.highest = *high;
    if (cell.isSeen.empty()) {
        static_cast<void>(Normalize(cell.spots));
    } else {
        cell.spots = NormalizedWhere(cell.isSeen, cell.spots);
    }
    return cell;
}

Reading NumberReader::Read(const read::ComponentView& luma, const Placement& placement) const
{
    Reading reading;
    if (!HasRoom() || !luma) {
        return reading;
    }
    static const DigitShapes sShapes(kGridX, kGridY, kPoints, 0.02);
    double lowest = 1e300;
    double highest = -1e300;
    reading.confidence = 1;
    reading.weakest = 1;
    for (int index = 0; index < mDigits; ++index) {
        const Cell cell = SampleCell(luma, placement, index);
        const auto seen = static_cast<double>(std::count(cell.isSeen.begin(), cell.isSeen.end(), true));
        const double share = cell.isSeen.empty() ? 1 : seen / (kGridX * kGridY);
        if (share < kLeastSeen) {
            // A digit that is cut off may be a leading zero; behind one that is seen it may be anything.
            if (reading.hidden < index) {
                return {};
            }
            ++reading.hidden;
            continue;
        }
        std::array<double, 10> alike{};
        for (std::size_t digit = 0; digit < alike.size(); ++digit) {
            alike[digit] =
                Product(cell.spots, cell.isSeen.empty() ? sShapes.Of(digit)
                                                        : NormalizedWhere(cell.isSeen, sShapes.Of(digit)));
        }
        const auto best =
            static_cast<std::size_t>(std::max_element(alike.begin(), alike.end()) - alike.begin());
        const double first = std::clamp(alike[best], 0.0, 0.999);
        alike[best] = -1;
        const double second = std::clamp(*std::max_element(alike.begin(), alike.end()), 0.0, 0.999);
        // Normal noise: the likelihoods differ by the ratio of what each shape leaves unexplained.
        const double logRatio =
            share * kIndependentSpots / 2 * std::log((1 - second * second) / (1 - first * first));
        reading.number = reading.number * 10 + static_cast<std::int64_t>(best);
        reading.confidence *= 1 / (1 + std::exp(-logRatio));
        reading.likeness += first;
        reading.weakest = std::min(reading.weakest, first);
        lowest = std::min(lowest, cell.lowest);
        highest = std::max(highest, cell.highest);
    }
    if (reading.hidden == mDigits) {
        return {};
    }
    reading.likeness /= mDigits - reading.hidden;
    reading.contrast = (highest - lowest) / FullScale(luma);
    return reading;
}

Reading NumberReader::ReadField(const read::ComponentView& luma, const Placement& placement, int parity) const
{
    // The middle of row 2j + parity is the middle of the field's row j.
    Placement inField = placement;
    inField.scaleY /= 2;
    inField.offsetY = (placement.offsetY - parity + 0.5) / 2;
    return Read(luma.Field(parity), inField);
}

/// The printed number as it should be, on a grid over the plate that is fine enough to show a part of a pixel.
struct NumberReader::Ink {
    std::vector<Point> spots;     // of the clip
    std::vector<double> expected; // normalised
};

NumberReader::Ink NumberReader::InkOf(std::int64_t number, int cells) const
{
    const double inkOffset = (mAdvance - pixmill::kGlyphInkWidth * mDigitHeight) / 2;
    const double step = std::max(1.0, mDigitHeight / 32.0);
    const double right = cells == mDigits ? mPlate.right : mCellLeft + cells * mAdvance;
    Ink ink;
    std::vector<std::size_t> digits(static_cast<std::size_t>(mDigits));
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit, number /= 10) {
        *digit = static_cast<std::size_t>(number % 10);
    }
    for (double y = mPlate.top + step / 2; y < mPlate.bottom; y += step) {
        for (double x = mPlate.left + step / 2; x < right; x += step) {
            const double cell = (x - mCellLeft) / mAdvance;
            const double inside = x - mCellLeft - std::floor(cell) * mAdvance - inkOffset;
            const bool isInk = cell >= 0 && cell < mDigits;
            ink.spots.push_back({x, y});
            ink.expected.push_back(isInk ? InkAt(digits[static_cast<std::size_t>(cell)], inside / mDigitHeight,
                                                 (y - mCellTop) / mDigitHeight, 1.0 / mDigitHeight)
                                         : 0.0);
        }
    }
    static_cast<void>(Normalize(ink.expected));
    return ink;
}

double NumberReader::Likeness(const read::ComponentView& luma, const Placement& placement, const Ink& ink)
{
    double sum = 0;
    double squares = 0;
    double product = 0;
    double expected = 0;
    double expectedSquares = 0;
    double count = 0;
    for (std::size_t i = 0; i < ink.spots.size(); ++i) {
        const Point at = placement.Map(ink.spots[i]);
        if (at.x < 0 || at.y < 0 || at.x >= luma.width || at.y >= luma.height) {
            continue; // cut off
        }
        const double value = Interpolated(luma, at);
        sum += value;
        squares += value * value;
        product += value * ink.expected[i];
        expected += ink.expected[i];
        expectedSquares += ink.expected[i] * ink.expected[i];
        ++count;
    }
    if (2 * count < static_cast<double>(ink.spots.size())) {
        return 0;
    }
    const double spread = (squares - sum * sum / count) * (expectedSquares - expected * expected / count);
    return spread > 1e-9 ? (product - sum * expected / count) / std::sqrt(spread) : 0.0;
}

double NumberReader::Likeness(const read::ComponentView& luma, const Placement& placement,
                              std::int64_t number) const
{
    return Likeness(luma, placement, InkOf(number, mDigits));
}

Placement NumberReader::Refine(const read::ComponentView& luma, const Placement& start,
                               std::int64_t number) const
{
    return Refine(luma, start, InkOf(number, mDigits));
}

Placement NumberReader::Refine(const read::ComponentView& luma, const Placement& start, const Ink& ink) const
{
    Placement best = start;
    double score = Likeness(luma, best, ink);
    const Point corner{mPlate.left, mPlate.top};
    // Moves in pixels of the movie, then in shares of the size about the plate's corner; halved until far below
    // a pixel.
    for (double move = mDigitHeight * start.scaleY / 8; move > 0.02; move /= 2) {
        for (bool improved = true; improved;) {
            improved = false;
            for (int way = 0; way < 8; ++way) {
                Placement next = best;
                const double sign = way % 2 == 0 ? 1 : -1;
                const double stretch = 1 + sign * move / ((mPlate.right - mPlate.left) * start.scaleX);
                switch (way / 2) {
                case 0:
                    next.offsetX += sign * move;
                    break;
                case 1:
                    next.offsetY += sign * move;
                    break;
                case 2:
                    next.scaleX *= stretch;
                    break;
                default:
                    next.scaleY *= stretch;
                    break;
                }
                if (way >= 4) {
                    const Point was = best.Map(corner);
                    const Point is = next.Map(corner);
                    next.offsetX += was.x - is.x;
                    next.offsetY += was.y - is.y;
                }
                const double likeness = Likeness(luma, next, ink);
                if (likeness > score + 1e-7) {
                    score = likeness;
                    best = next;
                    improved = true;
                }
            }
        }
    }
    return best;
}

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
            const Grey grey = Shrunk(luma, upright, step);
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

const read::ComponentView& LumaOf(const read::Picture& picture) noexcept
{
    const bool hasGreen = picture.format.isRgb && picture.components[1];
    return picture.components[hasGreen ? 1 : 0];
}

} // namespace tessel::verify::align
