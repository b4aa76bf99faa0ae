#include "DigitShapes.h"

#include <kestrel/pixmill/GlyphGeometry.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace tessel::verify::align {
namespace {

double DistanceToLine(const pixmill::Stroke& line, double x, double y) noexcept
{
    const double dx = line.x1 - line.x0;
    const double dy = line.y1 - line.y0;
    const double along = ((x - line.x0) * dx + (y - line.y0) * dy) / (dx * dx + dy * dy);
    const double nearest = std::clamp(along, 0.0, 1.0);
    return std::hypot(x - line.x0 - nearest * dx, y - line.y0 - nearest * dy);
}

double DistanceToArc(const pixmill::Stroke& arc, double x, double y) noexcept
{
    constexpr double kDegree = 3.14159265358979323846 / 180;
    const double angle = std::atan2(y - arc.y0, x - arc.x0) / kDegree;
    for (double turned = angle; turned < arc.endDegrees + 360; turned += 360) {
        if (turned >= arc.startDegrees && turned <= arc.endDegrees) {
            return std::abs(std::hypot(x - arc.x0, y - arc.y0) - arc.radius);
        }
    }
    double nearest = std::numeric_limits<double>::max();
    for (const double end : {arc.startDegrees, arc.endDegrees}) {
        nearest = std::min(nearest, std::hypot(x - arc.x0 - arc.radius * std::cos(end * kDegree),
                                               y - arc.y0 - arc.radius * std::sin(end * kDegree)));
    }
    return nearest;
}

} // namespace

double InkAt(std::size_t digit, double x, double y, double soft) noexcept
{
    double nearest = std::numeric_limits<double>::max();
    for (const pixmill::Stroke& stroke : pixmill::StrokesOf(digit)) {
        nearest = std::min(nearest, stroke.kind == pixmill::Stroke::Kind::Line ? DistanceToLine(stroke, x, y)
                                                                               : DistanceToArc(stroke, x, y));
    }
    const double outside = nearest - pixmill::kGlyphThickness / 2;
    return std::clamp(0.5 - outside / soft, 0.0, 1.0);
}

double Normalize(std::vector<double>& values) noexcept
{
    const double mean = std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
    double squares = 0;
    for (double& value : values) {
        value -= mean;
        squares += value * value;
    }
    const double length = std::sqrt(squares);
    for (double& value : values) {
        value = length > 1e-9 ? value / length : 0.0;
    }
    return length;
}

DigitShapes::DigitShapes(int columns, int rows, int points, double soft)
{
    const double inkOffset = (pixmill::kGlyphAdvance - pixmill::kGlyphInkWidth) / 2;
    for (std::size_t digit = 0; digit < mShapes.size(); ++digit) {
        std::vector<double>& shape = mShapes[digit];
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                double sum = 0;
                for (int py = 0; py < points; ++py) {
                    for (int px = 0; px < points; ++px) {
                        const double x = (column + (px + 0.5) / points) / columns * pixmill::kGlyphAdvance;
                        const double y = (row + (py + 0.5) / points) / rows;
                        sum += InkAt(digit, x - inkOffset, y, soft);
                    }
                }
                shape.push_back(sum);
            }
        }
        static_cast<void>(Normalize(shape));
    }
}

} // namespace tessel::verify::align
