#include "GlyphMasks.h"

#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace pixmill {

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

struct Vector {
    double x = 0;
    double y = 0;
};

[[nodiscard]] double Cross(Vector a, Vector b) noexcept
{
    return a.x * b.y - a.y * b.x;
}

[[nodiscard]] double SquaredLength(Vector v) noexcept
{
    return v.x * v.x + v.y * v.y;
}

/// A stroke's centre line in pixels of the cell, ready for asking distances.
class CentreLine {
public:
    CentreLine() = default;
    CentreLine(const Stroke& stroke, double scale, double offsetX)
        : mIsArc(stroke.kind == Stroke::Kind::Arc),
          mIsMoreThanHalfTurn(stroke.endDegrees - stroke.startDegrees > 180),
          mIsCircle(stroke.endDegrees - stroke.startDegrees >= 360),
          mRadius(stroke.radius * scale), mOrigin{stroke.x0 * scale + offsetX, stroke.y0 * scale}
    {
        if (mIsArc) {
            mFrom = {std::cos(stroke.startDegrees * kDegree), std::sin(stroke.startDegrees * kDegree)};
            mTo = {std::cos(stroke.endDegrees * kDegree), std::sin(stroke.endDegrees * kDegree)};
        } else {
            mTo = {(stroke.x1 - stroke.x0) * scale, (stroke.y1 - stroke.y0) * scale};
            mInverseLength = 1 / SquaredLength(mTo);
        }
    }

    [[nodiscard]] double DistanceTo(Vector point) const noexcept
    {
        const Vector at{point.x - mOrigin.x, point.y - mOrigin.y};
        return mIsArc ? DistanceToArc(at) : DistanceToLine(at);
    }

private:
    [[nodiscard]] double DistanceToLine(Vector at) const noexcept
    {
        const double along = (at.x * mTo.x + at.y * mTo.y) * mInverseLength;
        const double nearest = std::min(std::max(along, 0.0), 1.0);
        return std::sqrt(SquaredLength({at.x - nearest * mTo.x, at.y - nearest * mTo.y}));
    }

    [[nodiscard]] double DistanceToArc(Vector at) const noexcept
    {
        const bool afterStart = Cross(mFrom, at) >= 0;
        const bool beforeEnd = Cross(at, mTo) >= 0;
        const bool facesArc =
            mIsCircle || (mIsMoreThanHalfTurn ? afterStart || beforeEnd : afterStart && beforeEnd);
        if (facesArc) {
            return std::abs(std::sqrt(SquaredLength(at)) - mRadius);
        }
        return std::sqrt(std::min(SquaredLength({at.x - mFrom.x * mRadius, at.y - mFrom.y * mRadius}),
                                  SquaredLength({at.x - mTo.x * mRadius, at.y - mTo.y * mRadius})));
    }

    bool mIsArc = false;
    bool mIsMoreThanHalfTurn = false;
    bool mIsCircle = false;
    double mRadius = 0;
    double mInverseLength = 0; // of a line, squared
    Vector mOrigin;
    Vector mFrom; // of an arc: direction
    Vector mTo;   // of an arc: direction; of a line: its vector
};

constexpr std::size_t kMostStrokes = 4;

/// One glyph's outline, as the signed distance of any point from it.
class Outline {
public:
    Outline(std::size_t glyph, std::uint32_t digitHeight, std::uint32_t cellWidth)
        : mHalfThickness(kGlyphThickness * digitHeight / 2)
    {
        const double offsetX = (cellWidth - kGlyphInkWidth * digitHeight) / 2;
        for (const Stroke& stroke : StrokesOf(glyph)) {
            mLines[mLineCount++] = CentreLine(stroke, digitHeight, offsetX);
        }
    }

    /// Pixels from the outline; negative inside.
    [[nodiscard]] double DistanceTo(Vector point) const noexcept
    {
        double nearest = std::numeric_limits<double>::max();
        for (std::size_t line = 0; line < mLineCount; ++line) {
            nearest = std::min(nearest, mLines[line].DistanceTo(point));
        }
        return nearest - mHalfThickness;
    }

private:
    double mHalfThickness;
    std::array<CentreLine, kMostStrokes> mLines;
    std::size_t mLineCount = 0;
};

} // namespace

GlyphMask::GlyphMask(std::size_t glyph, std::uint32_t digitHeight, std::uint32_t cellWidth)
{
    const Outline outline(glyph, digitHeight, cellWidth);
    const auto append = [this](std::uint32_t x, std::uint32_t length, std::uint8_t coverage) {
        const bool solid = coverage == 255;
        const bool joins = mRuns.size() > mRowStarts.back() && mRuns.back().x + mRuns.back().length == x &&
                           (mRuns.back().edges == InkRun::kSolid) == solid;
        if (joins) {
            mRuns.back().length += length;
        } else {
            const auto edges = solid ? InkRun::kSolid : static_cast<std::uint32_t>(mEdges.size());
            mRuns.push_back({.x = x, .length = length, .edges = edges});
        }
        if (!solid) {
            mEdges.push_back(coverage);
        }
    };
    mRowStarts.reserve(std::size_t{digitHeight} + 1);
    for (std::uint32_t row = 0; row < digitHeight; ++row) {
        mRowStarts.push_back(mRuns.size());
        for (std::uint32_t x = 0; x < cellWidth;) {
            const double distance = outline.DistanceTo({x + 0.5, row + 0.5});
            // The edge passes through the pixel only if it is less than half a pixel away. The distance changes
            // by at most 1 per pixel, so the next `clear` pixels can be skipped.
            const double clear = std::abs(distance) - 0.5;
            std::uint32_t length = 1;
            if (clear >= 0) {
                length = std::min(static_cast<std::uint32_t>(clear) + 1, cellWidth - x);
            }
            const double share = std::min(std::max(0.5 - distance, 0.0), 1.0);
            const auto coverage = static_cast<std::uint8_t>(std::lround(share * 255));
            if (coverage != 0) {
                append(x, coverage == 255 ? length : 1, coverage);
            }
            x += coverage == 0 || coverage == 255 ? length : 1;
        }
    }
    mRowStarts.push_back(mRuns.size());
}

const GlyphMask& MaskFor(std::size_t glyph, const NumberLayout& layout)
{
    struct Size {
        std::uint32_t digitHeight = 0;
        std::uint32_t cellWidth = 0;
        bool operator==(const Size&) const = default;
    };
    struct Kept {
        Size size;
        std::array<std::optional<GlyphMask>, kGlyphCount> masks;
    };
    thread_local Kept tKept;
    const Size size{.digitHeight = layout.digitHeight, .cellWidth = layout.advance};
    if (tKept.size != size) {
        tKept.masks.fill(std::nullopt);
        tKept.size = size;
    }
    std::optional<GlyphMask>& mask = tKept.masks[glyph];
    if (!mask) {
        mask.emplace(glyph, size.digitHeight, size.cellWidth);
    }
    return *mask;
}

} // namespace pixmill
