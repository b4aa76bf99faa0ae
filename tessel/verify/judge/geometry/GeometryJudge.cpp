#include "GeometryJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessel::verify::judge {
namespace {

using align::Orientation;
using align::Placement;

constexpr std::array kGeometryChecks{id::kGeometryScaled,  id::kGeometryCropped, id::kGeometryPadded,
                                     id::kGeometryShifted, id::kGeometryFlipped, id::kGeometryRotated};

/// The middle of some numbers, and how far they lie apart.
struct Middle {
    double value = 0;
    double spread = 0;
};

template <class Get>
Middle MiddleOf(const std::vector<Placement>& placements, const Get& get)
{
    std::vector<double> values;
    values.reserve(placements.size());
    for (const Placement& placement : placements) {
        values.push_back(get(placement));
    }
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], (values.back() - values.front()) / 2};
}

/// The two steps of an orientation.
struct Turn {
    int degrees; ///< clockwise
    bool isMirrored;
    bool isUpsideDown;
};

Turn TurnOf(Orientation orientation) noexcept
{
    switch (orientation) {
    case Orientation::Turned90:
        return {90, false, false};
    case Orientation::Turned180:
        return {180, false, false};
    case Orientation::Turned270:
        return {270, false, false};
    case Orientation::Mirrored:
        return {0, true, false};
    case Orientation::MirroredVertical:
        return {0, false, true};
    case Orientation::Mirrored90:
        return {270, true, false};
    case Orientation::Mirrored270:
        return {90, true, false};
    case Orientation::Upright:
        break;
    }
    return {0, false, false};
}

} // namespace

void GeometrySampler::Take(const read::Picture& picture, std::int64_t frame, const Placement& start)
{
    const read::ComponentView& luma = align::LumaOf(picture);
    const Placement refined = mNumbers.Refine(luma, start, frame);
    if (mNumbers.Likeness(luma, refined, frame) > 0.8) {
        mPlacements.push_back(refined);
    }
}

namespace {

/// From placements to findings.
class GeometryJudging {
public:
    GeometryJudging(const std::vector<Placement>& placements, const align::Box& plate,
                    const read::PictureFacts& movie, Findings& findings)
        : mPlacements(placements), mPlate(plate), mMovie(movie), mFindings(findings), mFirst(placements.front())
    {
        for (const std::string_view check : kGeometryChecks) {
            findings.AsExpected(check);
        }
    }

    void Run()
    {
        JudgeTurn();
        const Middle scaleX = MiddleOf(mPlacements, [](const Placement& p) { return p.scaleX; });
        const Middle scaleY = MiddleOf(mPlacements, [](const Placement& p) { return p.scaleY; });
        // An edge of the plate is placed to some hundredths of a pixel, so its size to twice that.
        const double plateWidth = mPlate.right - mPlate.left;
        const double plateHeight = mPlate.bottom - mPlate.top;
        const bool exchanges = ExchangesSides(mFirst.orientation);
        mUncertaintyX = scaleX.spread + kEdge / (exchanges ? plateHeight : plateWidth);
        mUncertaintyY = scaleY.spread + kEdge / (exchanges ? plateWidth : plateHeight);
        mScaleX = Snapped(scaleX.value, mUncertaintyX);
        mScaleY = Snapped(scaleY.value, mUncertaintyY);
        SnapToPicture();
        JudgeScale();
        JudgePlace();
    }

private:
    static constexpr double kEdge = 0.3; ///< pixels

    /// 1 where it may be 1.
    static double Snapped(double scale, double uncertainty) noexcept
    {
        return std::abs(scale - 1) <= uncertainty + 0.002 ? 1.0 : scale;
    }

    /// A frame that fills the picture as far as can be told is stretched over it, and then its scale is known.
    void SnapToPicture()
    {
        const Placement stretched = Placement::Stretched(mFirst.clipWidth, mFirst.clipHeight,
                                                         mFirst.orientation, mMovie.width, mMovie.height);
        const align::Box found = mFirst.Map(mPlate);
        const align::Box filling = stretched.Map(mPlate);
        const bool isNear = std::abs(found.left - filling.left) < kEdge &&
                            std::abs(found.top - filling.top) < kEdge &&
                            std::abs(found.right - filling.right) < 2 * kEdge &&
                            std::abs(found.bottom - filling.bottom) < 2 * kEdge;
        if (isNear && (mScaleX != 1 || mScaleY != 1)) {
            mFirst = stretched;
            mScaleX = stretched.scaleX;
            mScaleY = stretched.scaleY;
            mUncertaintyX = kEdge / mMovie.width;
            mUncertaintyY = kEdge / mMovie.height;
        }
    }

    void JudgeTurn()
    {
        const Turn turn = TurnOf(mFirst.orientation);
        if (turn.isMirrored || turn.isUpsideDown) {
            const std::string text =
                turn.isUpsideDown ? "top and bottom are exchanged"
                : turn.degrees == 0
                    ? "left and right are exchanged"
                    : fmt::format("the picture is turned by {} degrees clockwise and mirrored", turn.degrees);
            Finding& finding = mFindings.Fault(id::kGeometryFlipped, text);
            finding.expected = std::string("upright");
            finding.found = std::string(turn.isUpsideDown ? "vertical" : "horizontal");
        } else if (turn.degrees != 0) {
            Finding& finding =
                mFindings.Fault(id::kGeometryRotated,
                                fmt::format("the picture is turned by {} degrees clockwise", turn.degrees));
            finding.expected = 0.0;
            finding.found = static_cast<double>(turn.degrees);
            finding.uncertainty = 0;
        } else if (mMovie.hasRotation) {
            Finding& finding = mFindings.Fault(
                id::kGeometryRotated,
                fmt::format("players are asked to turn the picture by {} degrees", mMovie.rotationDegrees));
            finding.expected = 0.0;
            finding.found = static_cast<double>(mMovie.rotationDegrees);
            finding.uncertainty = 0;
        }
    }

    void JudgeScale()
    {
        const double limit = mFindings.Limits().Of(id::kGeometryScaled);
        const auto isScaled = [&](double scale, double uncertainty) {
            return std::abs(scale - 1) > limit + uncertainty;
        };
        if (!isScaled(mScaleX, mUncertaintyX) && !isScaled(mScaleY, mUncertaintyY)) {
            return;
        }
        const bool isEven = std::abs(mScaleX / mScaleY - 1) < mUncertaintyX + mUncertaintyY;
        Finding& finding = mFindings.Fault(
            id::kGeometryScaled,
            isEven ? fmt::format("the picture is scaled by {:.4g}", mScaleX)
                   : fmt::format("the picture is scaled by {:.4g} in width and {:.4g} in height", mScaleX,
                                 mScaleY));
        const bool isWorseX = std::abs(mScaleX - 1) > std::abs(mScaleY - 1);
        finding.expected = 1.0;
        finding.found = isWorseX ? mScaleX : mScaleY;
        finding.uncertainty = isWorseX ? mUncertaintyX : mUncertaintyY;
    }

    /// What lies beyond the picture's edges, or between them and the frame's.
    void JudgePlace()
    {
        // The plate's corner is known best; the frame's edges follow from it with the scale as it was judged.
        Placement exact = mFirst;
        exact.scaleX = mScaleX;
        exact.scaleY = mScaleY;
        const align::Box was = mFirst.Map(mPlate);
        const align::Box is = exact.Map(mPlate);
        exact.offsetX += (was.left + was.right - is.left - is.right) / 2;
        exact.offsetY += (was.top + was.bottom - is.top - is.bottom) / 2;
        const align::Box placed = exact.Map(
            align::Box{0, 0, static_cast<double>(exact.clipWidth), static_cast<double>(exact.clipHeight)});
        const double lever = std::max(placed.right - placed.left, placed.bottom - placed.top);
        const bool isUnscaled = mScaleX == 1.0 && mScaleY == 1.0;
        const double uncertainty = 0.15 + (isUnscaled ? 0.0 : lever * std::max(mUncertaintyX, mUncertaintyY));
        const double over[] = {-placed.left, -placed.top, placed.right - mMovie.width,
                               placed.bottom - mMovie.height};
        // Left against right, top against bottom: a frame that only moved goes over on one side by as much as
        // it leaves free on the other.
        const bool keepsSize = std::abs(over[0] + over[2]) <= 2 * uncertainty + 0.3 &&
                               std::abs(over[1] + over[3]) <= 2 * uncertainty + 0.3;
        if (keepsSize) {
            JudgeShift(placed.left, placed.top, uncertainty);
            return;
        }
        const double cut = *std::max_element(std::begin(over), std::end(over));
        const double added = -*std::min_element(std::begin(over), std::end(over));
        const auto sides = [&](double sign) {
            return fmt::format("left {:.4g}, top {:.4g}, right {:.4g}, bottom {:.4g}",
                               std::max(0.0, sign * over[0]) + 0.0, std::max(0.0, sign * over[1]) + 0.0,
                               std::max(0.0, sign * over[2]) + 0.0, std::max(0.0, sign * over[3]) + 0.0);
        };
        Tell(id::kGeometryCropped, cut, uncertainty, "pixels are cut off: " + sides(1));
        Tell(id::kGeometryPadded, added, uncertainty, "pixels are added: " + sides(-1));
    }

    void JudgeShift(double x, double y, double uncertainty)
    {
        const bool isWorseX = std::abs(x) > std::abs(y);
        const double found = isWorseX ? x : y;
        const double limit = mFindings.Limits().Of(id::kGeometryShifted);
        if (std::abs(found) <= limit + uncertainty) {
            return;
        }
        Tell(id::kGeometryShifted, found, uncertainty,
             fmt::format("the picture is shifted by {:.2f} pixels to the right and {:.2f} down", x, y));
    }

    void Tell(std::string_view check, double found, double uncertainty, std::string message)
    {
        if (std::abs(found) <= mFindings.Limits().Of(check) + uncertainty ||
            (check != id::kGeometryShifted && found < 0)) {
            return;
        }
        Finding& finding = mFindings.Fault(check, std::move(message));
        finding.expected = 0.0;
        finding.found = found;
        finding.uncertainty = uncertainty;
    }

    const std::vector<Placement>& mPlacements;
    align::Box mPlate;
    const read::PictureFacts& mMovie;
    Findings& mFindings;
    Placement mFirst;
    double mScaleX = 1;
    double mScaleY = 1;
    double mUncertaintyX = 0;
    double mUncertaintyY = 0;
};

} // namespace

void JudgeGeometry(const GeometrySampler& sampler, const align::Alignment& alignment,
                   const align::NumberReader& numbers, const read::PictureFacts& movie, Findings& findings)
{
    std::vector<Placement> placements = sampler.Placements();
    if (placements.empty() && alignment.isPlacedByContent) {
        placements.push_back(*alignment.placement);
    }
    if (placements.empty()) {
        for (const std::string_view check : kGeometryChecks) {
            findings.NotVisible(check);
        }
        return;
    }
    GeometryJudging(placements, numbers.Plate(), movie, findings).Run();
}

} // namespace tessel::verify::judge
