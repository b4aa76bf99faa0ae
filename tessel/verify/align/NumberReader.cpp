#include "NumberReader.h"

#include "DigitShapes.h"
#include "Interpolated.h"

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

const read::ComponentView& LumaOf(const read::Picture& picture) noexcept
{
    const bool hasGreen = picture.format.isRgb && picture.components[1];
    return picture.components[hasGreen ? 1 : 0];
}

} // namespace tessel::verify::align
