#include "DigitShapes.h"
#include "Interpolated.h"
#include "NumberInk.h"

#include <kestrel/pixmill/GlyphGeometry.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::align {

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

} // namespace tessel::verify::align
