/// Reads printed frame numbers back from pictures. Knows nothing of how they are drawn but the geometry.
#pragma once

#include <kestrel/pixmill/GlyphGeometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace testsupport {

/// A picture to read from: the brightness, on any scale, of the pixel x, y of the upright picture.
struct BrightnessPicture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::function<double(std::uint32_t x, std::uint32_t y)> at;
};

/// Compares each cell of a layout with what each glyph should look like there, by correlation, so that
/// neither brightness nor contrast matter.
class NumberReader {
public:
    /// The number printed at the usual place, 5 % from the top left corner and 12 % high; nothing where some
    /// cell does not look like any glyph.
    [[nodiscard]] std::optional<std::int64_t> Read(const BrightnessPicture& picture)
    {
        // Longer numbers first: the first cells of a longer number look like a shorter one.
        for (std::uint32_t characters = 11; characters >= pixmill::kLeastDigits; --characters) {
            const pixmill::NumberLayout layout =
                pixmill::LayOutNumber(picture.width, picture.height, characters, 0.12F, 0.05F, 0.05F);
            if (layout.digitHeight == 0) {
                continue;
            }
            if (const auto number = ReadLayout(picture, layout, characters)) {
                return number;
            }
        }
        return std::nullopt;
    }

    /// How like its glyph the least readable cell of the last number was; 1 is perfect.
    [[nodiscard]] double WorstCorrelation() const { return mWorst; }

private:
    using Template = std::vector<double>; // ink, 0..1, of the sampled pixels of a cell
    using Size = std::pair<std::uint32_t, std::uint32_t>;

    /// Below this a cell is taken for something else than a glyph.
    static constexpr double kLeastCorrelation = 0.6;

    std::optional<std::int64_t> ReadLayout(const BrightnessPicture& picture,
                                           const pixmill::NumberLayout& layout, std::uint32_t characters)
    {
        const auto& templates = TemplatesFor(layout);
        double worst = 1;
        bool negative = false;
        std::int64_t number = 0;
        for (std::uint32_t cell = 0; cell < characters; ++cell) {
            const Template seen = Sample(picture, layout, cell);
            std::size_t best = 0;
            double bestCorrelation = -1;
            for (std::size_t glyph = 0; glyph < pixmill::kGlyphCount; ++glyph) {
                const double correlation = Correlation(seen, templates[glyph]);
                if (correlation > bestCorrelation) {
                    best = glyph;
                    bestCorrelation = correlation;
                }
            }
            if (bestCorrelation < kLeastCorrelation || (best == pixmill::kMinusGlyph && cell != 0)) {
                return std::nullopt;
            }
            worst = std::min(worst, bestCorrelation);
            if (best == pixmill::kMinusGlyph) {
                negative = true;
            } else {
                number = number * 10 + static_cast<std::int64_t>(best);
            }
        }
        const std::uint32_t digits = characters - (negative ? 1 : 0);
        if (digits < pixmill::kLeastDigits) {
            return std::nullopt;
        }
        mWorst = worst;
        return negative ? -number : number;
    }

    /// Large digits are read from some of their pixels only.
    [[nodiscard]] static std::uint32_t Stride(const pixmill::NumberLayout& layout)
    {
        return std::max(1U, layout.digitHeight / 48);
    }

    static Template Sample(const BrightnessPicture& picture, const pixmill::NumberLayout& layout,
                           std::uint32_t cell)
    {
        Template seen;
        const std::uint32_t stride = Stride(layout);
        for (std::uint32_t y = 0; y < layout.digitHeight; y += stride) {
            for (std::uint32_t x = 0; x < layout.advance; x += stride) {
                seen.push_back(picture.at(layout.CellLeft(cell) + x, layout.CellTop() + y));
            }
        }
        return seen;
    }

    static double Correlation(const Template& a, const Template& b)
    {
        const auto count = static_cast<double>(a.size());
        double sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            sumA += a[i];
            sumB += b[i];
            sumAA += a[i] * a[i];
            sumBB += b[i] * b[i];
            sumAB += a[i] * b[i];
        }
        const double varianceA = sumAA - sumA * sumA / count;
        const double varianceB = sumBB - sumB * sumB / count;
        if (!(varianceA > 1e-9) || !(varianceB > 1e-9)) {
            return 0;
        }
        return (sumAB - sumA * sumB / count) / std::sqrt(varianceA * varianceB);
    }

    struct Point {
        double x, y;
    };

    static double SquaredDistance(Point p, Point a, Point b)
    {
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double length = dx * dx + dy * dy;
        const double along =
            length == 0 ? 0 : std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / length, 0.0, 1.0);
        const double ex = p.x - a.x - along * dx, ey = p.y - a.y - along * dy;
        return ex * ex + ey * ey;
    }

    /// Centre lines as chains of points; arcs every 10 degrees at most.
    static std::vector<std::vector<Point>> ChainsOf(std::size_t glyph)
    {
        std::vector<std::vector<Point>> chains;
        for (const pixmill::Stroke& stroke : pixmill::StrokesOf(glyph)) {
            if (stroke.kind == pixmill::Stroke::Kind::Line) {
                chains.push_back({{stroke.x0, stroke.y0}, {stroke.x1, stroke.y1}});
                continue;
            }
            const int steps = static_cast<int>((stroke.endDegrees - stroke.startDegrees) / 10) + 1;
            std::vector<Point> chain;
            for (int i = 0; i <= steps; ++i) {
                const double degrees =
                    stroke.startDegrees + (stroke.endDegrees - stroke.startDegrees) * i / steps;
                const double angle = degrees * std::acos(-1.0) / 180;
                chain.push_back(
                    {stroke.x0 + stroke.radius * std::cos(angle), stroke.y0 + stroke.radius * std::sin(angle)});
            }
            chains.push_back(std::move(chain));
        }
        return chains;
    }

    static bool IsInk(const std::vector<std::vector<Point>>& chains, Point p)
    {
        constexpr double kReach = pixmill::kGlyphThickness / 2;
        for (const auto& chain : chains) {
            for (std::size_t i = 1; i < chain.size(); ++i) {
                if (SquaredDistance(p, chain[i - 1], chain[i]) <= kReach * kReach) {
                    return true;
                }
            }
        }
        return false;
    }

    const std::array<Template, pixmill::kGlyphCount>& TemplatesFor(const pixmill::NumberLayout& layout)
    {
        const auto [found, isNew] = mTemplates.try_emplace({layout.digitHeight, layout.advance});
        if (!isNew) {
            return found->second;
        }
        constexpr int kSub = 4; // samples a pixel and direction
        const std::uint32_t stride = Stride(layout);
        for (std::size_t glyph = 0; glyph < pixmill::kGlyphCount; ++glyph) {
            const auto chains = ChainsOf(glyph);
            for (std::uint32_t y = 0; y < layout.digitHeight; y += stride) {
                for (std::uint32_t x = 0; x < layout.advance; x += stride) {
                    int inked = 0;
                    for (int sub = 0; sub < kSub * kSub; ++sub) {
                        const int row = sub / kSub;
                        const double px = x + (sub % kSub + 0.5) / kSub - layout.InkOffset();
                        const double py = y + (row + 0.5) / kSub;
                        inked += IsInk(chains, {px / layout.digitHeight, py / layout.digitHeight}) ? 1 : 0;
                    }
                    found->second[glyph].push_back(inked / double{kSub * kSub});
                }
            }
        }
        return found->second;
    }

    std::map<Size, std::array<Template, pixmill::kGlyphCount>> mTemplates;
    double mWorst = 0;
};

} // namespace testsupport
