#include "Levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace tessel::verify::judge {
namespace {

constexpr std::size_t kMostPoints = 1200;

/// The four unknowns: gain, offset, saturation, hue in degrees.
using Levels = std::array<double, 4>;
enum Unknown : std::size_t { kGain, kOffset, kSaturation, kHue };
constexpr Levels kUnchanged{1, 0, 1, 0};
constexpr Levels kSteps{1e-4, 1e-2, 1e-4, 1e-2}; // for differences

/// What chroma does beside luma.
enum class Chroma { LeftAlone, LikeLuma, ByItself };

/// Luma from black on and chroma from its middle on; what came back is in the movie's own codes.
struct Point {
    Triple was{};
    Triple found{};
    Triple is{}; ///< `found` from black on, as far as clipping left it
};

/// The same as the codes meet it: chroma is multiplied and turned by two factors.
struct Change {
    explicit Change(const Levels& levels) noexcept
        : gain(levels[kGain]), offset(levels[kOffset]),
          alike(levels[kSaturation] * std::cos(levels[kHue] * std::numbers::pi / 180)),
          turned(levels[kSaturation] * std::sin(levels[kHue] * std::numbers::pi / 180))
    {
    }

    double gain;
    double offset;
    double alike;
    double turned;
};

/// Codes after a change of levels, clipped to what samples hold.
class LevelModel {
public:
    explicit LevelModel(const Coding& expected)
        : mExpected(expected), mDifferences(expected.isRgb ? Coding{false, 1, true} : expected),
          mBlack(mDifferences.isFull ? 0.0 : 16.0)
    {
    }

    [[nodiscard]] Triple FromBlack(const Triple& rgb) const noexcept
    {
        const Triple codes = Encode(mDifferences, rgb);
        return {codes[0] - mBlack, codes[1] - 128, codes[2] - 128};
    }

    [[nodiscard]] Triple Decoded(const Triple& codes) const noexcept { return Decode(mExpected, codes); }

    [[nodiscard]] Triple Predict(const Change& change, const Triple& was) const noexcept
    {
        Triple codes{mBlack + change.gain * was[0] + change.offset,
                     128 + change.alike * was[1] - change.turned * was[2],
                     128 + change.turned * was[1] + change.alike * was[2]};
        if (mExpected.isRgb) {
            codes = Encode(mExpected, Decode(mDifferences, codes));
        }
        if (!mExpected.isFloat) {
            for (double& code : codes) {
                code = std::clamp(code, 0.0, 255.0);
            }
        }
        return codes;
    }

private:
    Coding mExpected;
    Coding mDifferences; ///< R'G'B' codes are fitted as luma and differences too, by BT.709
    double mBlack;
};

double ResidualOf(const LevelModel& model, const std::vector<Point>& points, const Levels& levels)
{
    const Change change(levels);
    double squares = 0;
    for (const Point& point : points) {
        squares += SquaredDistance(model.Predict(change, point.was), point.found);
    }
    return std::sqrt(squares / static_cast<double>(points.size()) / 3);
}

/// Which unknowns are fitted.
struct Freedom {
    bool hasGain = false;
    bool hasOffset = false;
    bool hasHue = false;
    Chroma chroma = Chroma::LeftAlone;

    [[nodiscard]] int Changes() const noexcept
    {
        return (hasGain ? 1 : 0) + (hasOffset ? 1 : 0) + (hasHue ? 1 : 0) +
               (chroma == Chroma::ByItself ? 1 : 0);
    }
};

/// The directions in which a fit may move; a direction that moves gain may take saturation along.
std::vector<Levels> DirectionsOf(const Freedom& freedom)
{
    std::vector<Levels> directions;
    if (freedom.hasGain) {
        directions.push_back({1, 0, freedom.chroma == Chroma::LikeLuma ? 1.0 : 0.0, 0});
    }
    if (freedom.hasOffset) {
        directions.push_back({0, 1, 0, 0});
    }
    if (freedom.chroma == Chroma::ByItself) {
        directions.push_back({0, 0, 1, 0});
    }
    if (freedom.hasHue) {
        directions.push_back({0, 0, 0, 1});
    }
    return directions;
}

/// Solves a symmetric system of up to four unknowns by elimination; nothing where it is singular.
std::optional<Levels> Solve(std::array<Levels, 4> matrix, Levels right, std::size_t size)
{
    for (std::size_t column = 0; column < size; ++column) {
        std::size_t pivot = column;
        for (std::size_t row = column + 1; row < size; ++row) {
            if (std::abs(matrix[row][column]) > std::abs(matrix[pivot][column])) {
                pivot = row;
            }
        }
        if (std::abs(matrix[pivot][column]) < 1e-9) {
            return std::nullopt;
        }
        std::swap(matrix[pivot], matrix[column]);
        std::swap(right[pivot], right[column]);
        for (std::size_t row = 0; row < size; ++row) {
            if (row == column) {
                continue;
            }
            const double factor = matrix[row][column] / matrix[column][column];
            for (std::size_t i = column; i < size; ++i) {
                matrix[row][i] -= factor * matrix[column][i];
            }
            right[row] -= factor * right[column];
        }
    }
    for (std::size_t i = 0; i < size; ++i) {
        right[i] /= matrix[i][i];
    }
    return right;
}

/// Where the search begins: gain and offset left alone, chroma as if nothing were clipped.
Levels StartOf(const std::vector<Point>& points, const Freedom& freedom)
{
    double along = 0;
    double across = 0;
    double squares = 0;
    for (const Point& point : points) {
        along += point.was[1] * point.is[1] + point.was[2] * point.is[2];
        across += point.was[1] * point.is[2] - point.was[2] * point.is[1];
        squares += point.was[1] * point.was[1] + point.was[2] * point.was[2];
    }
    Levels levels = kUnchanged;
    if (freedom.hasHue) {
        levels[kHue] = std::atan2(across, along) * 180 / std::numbers::pi;
    }
    if (freedom.chroma == Chroma::ByItself && squares > 0) {
        levels[kSaturation] = (freedom.hasHue ? std::hypot(along, across) : along) / squares;
    }
    return levels;
}

/// Gauss and Newton: least squares of a model that clipping makes crooked.
Levels Fit(const LevelModel& model, const std::vector<Point>& points, const Freedom& freedom)
{
    const std::vector<Levels> directions = DirectionsOf(freedom);
    Levels levels = StartOf(points, freedom);
    double residual = ResidualOf(model, points, levels);
    constexpr int kMostTurns = 12;
    for (int turn = 0; turn < kMostTurns && !directions.empty(); ++turn) {
        std::array<Levels, 4> matrix{}; // normal equations
        Levels right{};
        const Change here(levels);
        std::vector<Change> further;
        std::vector<Change> back;
        std::array<double, 4> steps{};
        for (std::size_t i = 0; i < directions.size(); ++i) {
            Levels forwards = levels;
            Levels backwards = levels;
            for (std::size_t part = 0; part < 4; ++part) {
                const double step = directions[i][part] * kSteps[part];
                forwards[part] += step;
                backwards[part] -= step;
                steps[i] = std::max(steps[i], step);
            }
            further.emplace_back(forwards);
            back.emplace_back(backwards);
        }
        for (const Point& point : points) {
            const Triple codes = model.Predict(here, point.was);
            std::array<Triple, 4> slopes{};
            for (std::size_t i = 0; i < directions.size(); ++i) {
                const Triple more = model.Predict(further[i], point.was);
                const Triple less = model.Predict(back[i], point.was);
                for (std::size_t part = 0; part < 3; ++part) {
                    // A code at the end of its samples moves in one direction alone.
                    const double up = more[part] - codes[part];
                    const double down = codes[part] - less[part];
                    slopes[i][part] = (std::abs(up) > std::abs(down) ? up : down) / steps[i];
                }
            }
            for (std::size_t part = 0; part < 3; ++part) {
                const double off = point.found[part] - codes[part];
                for (std::size_t i = 0; i < directions.size(); ++i) {
                    right[i] += slopes[i][part] * off;
                    for (std::size_t j = 0; j < directions.size(); ++j) {
                        matrix[i][j] += slopes[i][part] * slopes[j][part];
                    }
                }
            }
        }
        const std::optional<Levels> solution = Solve(matrix, right, directions.size());
        if (!solution) {
            break;
        }
        Levels next = levels;
        for (std::size_t i = 0; i < directions.size(); ++i) {
            for (std::size_t part = 0; part < 4; ++part) {
                next[part] += directions[i][part] * (*solution)[i];
            }
        }
        const double nextResidual = ResidualOf(model, points, next);
        if (nextResidual > residual) {
            break;
        }
        const bool isDone = residual - nextResidual < 1e-9;
        levels = next;
        residual = nextResidual;
        if (isDone) {
            break;
        }
    }
    return levels;
}

std::vector<Point> PointsOf(const LevelModel& model, const std::vector<ColorPair>& pairs)
{
    const std::size_t stride = std::max<std::size_t>(1, pairs.size() / kMostPoints);
    std::vector<Point> points;
    for (std::size_t i = 0; i < pairs.size(); i += stride) {
        const ColorPair& pair = pairs[i];
        points.push_back({model.FromBlack(pair.rgb), pair.found, model.FromBlack(model.Decoded(pair.found))});
    }
    return points;
}

/// How far lumas are spread and how far chroma is from grey, in codes.
void MeasureSpread(const std::vector<Point>& points, double& meanLuma, double& spread, double& radius)
{
    const auto count = static_cast<double>(points.size());
    meanLuma = spread = radius = 0;
    for (const Point& point : points) {
        meanLuma += point.was[0] / count;
        radius += (point.was[1] * point.was[1] + point.was[2] * point.was[2]) / count;
    }
    for (const Point& point : points) {
        spread += (point.was[0] - meanLuma) * (point.was[0] - meanLuma) / count;
    }
    spread = std::sqrt(spread);
    radius = std::sqrt(radius);
}

} // namespace

LevelFit FitLevels(const std::vector<ColorPair>& pairs, const Coding& expected, double noise)
{
    LevelFit fit;
    if (pairs.size() < 2) {
        return fit;
    }
    const LevelModel model(expected);
    const std::vector<Point> points = PointsOf(model, pairs);
    double meanLuma = 0;
    double spread = 0;
    double radius = 0;
    MeasureSpread(points, meanLuma, spread, radius);
    // So many codes tell gain and hue to some percent.
    fit.hasLuma = spread > 15;
    fit.hasChroma = radius > 10;
    const Chroma freest = fit.hasChroma ? Chroma::ByItself : Chroma::LeftAlone;
    const double least =
        ResidualOf(model, points, Fit(model, points, {fit.hasLuma, true, fit.hasChroma, freest}));
    // What the codes do without is left out: fewest changes first.
    const double enough = std::max(least * 1.15, least + 0.1);
    Levels best = kUnchanged;
    int fewest = 5;
    for (const bool hasGain : {false, true}) {
        for (const bool hasOffset : {false, true}) {
            for (const Chroma chroma : {Chroma::LeftAlone, Chroma::LikeLuma, Chroma::ByItself}) {
                for (const bool hasHue : {false, true}) {
                    const Freedom freedom{hasGain, hasOffset, hasHue, chroma};
                    const bool isTold = (!hasGain || fit.hasLuma) &&
                                        (fit.hasChroma || (!hasHue && chroma == Chroma::LeftAlone)) &&
                                        (hasGain || chroma != Chroma::LikeLuma);
                    if (!isTold || freedom.Changes() > fewest) {
                        continue;
                    }
                    const Levels tried = Fit(model, points, freedom);
                    const double residual = ResidualOf(model, points, tried);
                    if (residual <= enough && (freedom.Changes() < fewest || residual < fit.residual)) {
                        fewest = freedom.Changes();
                        best = tried;
                        fit.residual = residual;
                        fit.chromaIsLikeLuma = chroma == Chroma::LikeLuma;
                    }
                }
            }
        }
    }
    const Freedom gainAlone{true, false, false, fit.hasChroma ? Chroma::LikeLuma : Chroma::LeftAlone};
    const Freedom offsetAlone{false, true, false, Chroma::LeftAlone};
    const auto isEnough = [&](const Freedom& freedom) {
        return ResidualOf(model, points, Fit(model, points, freedom)) <= enough;
    };
    fit.isGainOrOffset = fewest == 1 && fit.hasLuma && isEnough(gainAlone) && isEnough(offsetAlone);
    fit.gain = best[kGain];
    fit.offset = best[kOffset];
    fit.saturation = best[kSaturation];
    fit.hueDegrees = best[kHue];
    // Codec errors are alike all over a picture: more patches do not average them away.
    const double error = std::max(noise, fit.residual);
    fit.gainUncertainty = fit.hasLuma ? error / spread : 1;
    fit.offsetUncertainty = fit.hasLuma ? error * std::hypot(1, meanLuma / spread) : error;
    fit.saturationUncertainty = fit.hasChroma ? error / radius : 1;
    fit.hueUncertainty = fit.hasChroma ? error / radius * 180 / std::numbers::pi : 180;
    return fit;
}

double OwnSaturation(const LevelFit& fit) noexcept
{
    return fit.chromaIsLikeLuma ? 1 : fit.saturation;
}

int ChangesOf(const LevelFit& fit) noexcept
{
    return (fit.gain != 1 ? 1 : 0) + (fit.offset != 0 ? 1 : 0) + (OwnSaturation(fit) != 1 ? 1 : 0) +
           (fit.hueDegrees != 0 ? 1 : 0);
}

} // namespace tessel::verify::judge
