#include "ColorModel.h"

#include "Curves.h"

#include <tessel/verify/judge/container/CodePoints.h>

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr double kPi = 3.14159265358979323846;

struct Weights {
    double red = 0.2126;
    double blue = 0.0722;
};

Weights WeightsOf(int matrix) noexcept
{
    switch (matrix) {
    case 5:
    case 6:
        return {0.299, 0.114};
    case 7:
        return {0.212, 0.087};
    case 9:
    case 10:
        return {0.2627, 0.0593};
    default:
        return {};
    }
}

/// Luma and colour differences of R'G'B': 0..1 and -0.5..0.5.
Triple ToDifferences(const Weights& weights, const Triple& rgb) noexcept
{
    const double luma =
        weights.red * rgb[0] + (1 - weights.red - weights.blue) * rgb[1] + weights.blue * rgb[2];
    return {luma, (rgb[2] - luma) / (2 * (1 - weights.blue)), (rgb[0] - luma) / (2 * (1 - weights.red))};
}

Triple FromDifferences(const Weights& weights, const Triple& ycc) noexcept
{
    const double red = ycc[0] + 2 * (1 - weights.red) * ycc[2];
    const double blue = ycc[0] + 2 * (1 - weights.blue) * ycc[1];
    return {red, (ycc[0] - weights.red * red - weights.blue * blue) / (1 - weights.red - weights.blue), blue};
}

Triple Clipped(Triple codes) noexcept
{
    for (double& code : codes) {
        code = std::clamp(code, 0.0, 255.0);
    }
    return codes;
}

/// Each component through a curve, mirrored for negative values.
Triple Through(double (*function)(double) noexcept, const Triple& rgb) noexcept
{
    Triple result{};
    for (std::size_t i = 0; i < 3; ++i) {
        result[i] = rgb[i] < 0 ? -function(-rgb[i]) : function(rgb[i]);
    }
    return result;
}

/// A range mistake: levels are scaled and moved, chroma is scaled about its middle.
struct RangeError {
    std::string_view message;
    std::string_view found;
    double levelScale;
    double levelOffset;
    double chromaScale;
};
constexpr RangeError kSqueezed{"the range is squeezed: codes were taken for full range and made limited",
                               "squeezed", 219.0 / 255, 16, 224.0 / 255};
constexpr RangeError kExpanded{"the range is expanded: codes were taken for limited range and made full",
                               "expanded", 255.0 / 219, -16 * 255.0 / 219, 255.0 / 224};

Triple Ranged(const RangeError& error, const Coding& coding, const Triple& codes) noexcept
{
    Triple result = codes;
    for (std::size_t i = 0; i < 3; ++i) {
        const bool isLevel = coding.isRgb || i == 0;
        result[i] = isLevel ? codes[i] * error.levelScale + error.levelOffset
                            : 128 + (codes[i] - 128) * error.chromaScale;
    }
    return result;
}

/// Makes the list of hypotheses.
class Listing {
public:
    explicit Listing(const Coding& expected) : mExpected(expected) {}

    std::vector<Hypothesis> Make()
    {
        AddColors({}, {}, {}, {}, [](const ColorPair& pair) { return pair.rgb; });
        AddMatrices();
        AddRanges();
        AddComponents();
        AddTransfers();
        AddClipping();
        AddAlpha();
        return std::move(mList);
    }

private:
    using Way = std::function<Triple(const ColorPair&)>;

    /// @param toCodes  what comes back, in codes
    void AddCodes(std::vector<std::string_view> ids, std::string message, std::vector<std::string> found,
                  std::vector<std::string> expected, Way toCodes)
    {
        Hypothesis& made = mList.emplace_back();
        made.ids = std::move(ids);
        made.message = std::move(message);
        made.found = std::move(found);
        made.expected = std::move(expected);
        made.predict = [toCodes = std::move(toCodes), isFloat = mExpected.isFloat](const ColorPair& pair) {
            return isFloat ? toCodes(pair) : Clipped(toCodes(pair));
        };
    }

    /// @param toRgb  what comes back, in R'G'B' that is then coded rightly
    void AddColors(std::vector<std::string_view> ids, std::string message, std::vector<std::string> found,
                   std::vector<std::string> expected, Way toRgb)
    {
        AddCodes(std::move(ids), std::move(message), std::move(found), std::move(expected),
                 [coding = mExpected, toRgb = std::move(toRgb)](const ColorPair& pair) {
                     return Encode(coding, toRgb(pair));
                 });
    }

    void AddMatrices()
    {
        for (const int from : {1, 6, 9, 7}) {
            for (const int to : {1, 6, 9, 7}) {
                if (!IsSameMatrix(from, to)) {
                    AddMatrix(from, to);
                }
            }
        }
    }

    void AddMatrix(int from, int to)
    {
        const Coding coding = mExpected;
        const bool isPlain = !coding.isRgb && IsSameMatrix(from, coding.matrix);
        std::string message =
            fmt::format("codes were taken for {} and converted to {}", MatrixName(from), MatrixName(to));
        if (coding.isRgb) {
            message = fmt::format("codes made with {} were read with {}", MatrixName(from), MatrixName(to));
        } else if (isPlain) {
            message = fmt::format("codes are {} where {} is right", MatrixName(to), MatrixName(coding.matrix));
        }
        const Coding asFrom{false, from, coding.isFull};
        const Coding asTo{false, to, coding.isFull};
        const Way codes = [coding, asFrom, asTo](const ColorPair& pair) {
            return coding.isRgb ? Encode(coding, Decode(asTo, Encode(asFrom, pair.rgb)))
                                : Encode(asTo, Decode(asFrom, Encode(coding, pair.rgb)));
        };
        const std::string right = MatrixName(coding.isRgb ? from : coding.matrix);
        AddCodes({id::kColorMatrix}, message, {MatrixName(to)}, {right}, codes);
        if (isPlain) {
            for (const RangeError& error : {kSqueezed, kExpanded}) {
                AddCodes({id::kColorMatrix, id::kColorRange}, message,
                         {MatrixName(to), std::string(error.found)}, {right, RangeName()},
                         [coding, codes, error](const ColorPair& pair) {
                             return Ranged(error, coding, codes(pair));
                         });
            }
        }
    }

    void AddRanges()
    {
        for (const RangeError& error : {kSqueezed, kExpanded}) {
            AddCodes({id::kColorRange}, std::string(error.message), {std::string(error.found)}, {RangeName()},
                     [coding = mExpected, error](const ColorPair& pair) {
                         return Ranged(error, coding, Encode(coding, pair.rgb));
                     });
        }
    }

    void AddComponents()
    {
        struct Order {
            std::array<std::size_t, 3> from;
            std::string_view name;
        };
        constexpr Order kOrders[] = {{{2, 1, 0}, "B'G'R'"},
                                     {{0, 2, 1}, "R'B'G'"},
                                     {{1, 0, 2}, "G'R'B'"},
                                     {{1, 2, 0}, "G'B'R'"},
                                     {{2, 0, 1}, "B'R'G'"}};
        for (const Order& order : kOrders) {
            AddColors({id::kColorChannels}, fmt::format("red, green and blue are exchanged: {}", order.name),
                      {std::string(order.name)}, {"R'G'B'"}, [from = order.from](const ColorPair& pair) {
                          return Triple{pair.rgb[from[0]], pair.rgb[from[1]], pair.rgb[from[2]]};
                      });
        }
        if (!mExpected.isRgb) {
            AddCodes({id::kColorChromaSwapped}, "Cb and Cr are exchanged", {"Cr, Cb"}, {"Cb, Cr"},
                     [coding = mExpected](const ColorPair& pair) {
                         const Triple codes = Encode(coding, pair.rgb);
                         return Triple{codes[0], codes[2], codes[1]};
                     });
        }
    }

    void AddTransfers()
    {
        for (const Curve& curve : kCurves) {
            const std::string name(curve.name);
            AddColors({id::kColorTransfer}, fmt::format("the transfer function is applied twice ({})", name),
                      {name + " twice"}, {"once"},
                      [curve](const ColorPair& pair) { return Through(curve.toSignal, pair.rgb); });
            AddColors({id::kColorTransfer},
                      fmt::format("the transfer function is not applied ({}): codes are linear", name),
                      {"linear"}, {name},
                      [curve](const ColorPair& pair) { return Through(curve.toLight, pair.rgb); });
            for (const Curve& other : kCurves) {
                if (other.name != curve.name) {
                    AddColors({id::kColorTransfer}, fmt::format("{} was converted to {}", name, other.name),
                              {std::string(other.name)}, {name}, [curve, other](const ColorPair& pair) {
                                  return Through(other.toSignal, Through(curve.toLight, pair.rgb));
                              });
                }
            }
        }
    }

    void AddClipping()
    {
        if (!mExpected.isRgb && !mExpected.isFull) {
            AddCodes({id::kColorClipped}, "codes outside 16..235 are cut off", {"16..235"}, {"1..254"},
                     [coding = mExpected](const ColorPair& pair) {
                         const Triple codes = Encode(coding, pair.rgb);
                         return Triple{std::clamp(codes[0], 16.0, 235.0), std::clamp(codes[1], 16.0, 240.0),
                                       std::clamp(codes[2], 16.0, 240.0)};
                     });
        }
    }

    void AddAlpha()
    {
        const auto scaled = [](const Triple& rgb, double by) {
            return Triple{rgb[0] * by, rgb[1] * by, rgb[2] * by};
        };
        AddColors({id::kColorAlpha}, "colours are multiplied by alpha once too often", {"multiplied"},
                  {"as they are"}, [scaled](const ColorPair& pair) { return scaled(pair.rgb, pair.alpha); });
        AddColors({id::kColorAlpha}, "colours are divided by alpha", {"divided"}, {"as they are"},
                  [scaled](const ColorPair& pair) { return scaled(pair.rgb, 1 / std::max(pair.alpha, 0.01)); });
    }

    [[nodiscard]] std::string RangeName() const { return mExpected.isFull ? "full" : "limited"; }

    Coding mExpected;
    std::vector<Hypothesis> mList;
};

double TrimmedRoot(std::vector<double> squares)
{
    if (squares.empty()) {
        return 0;
    }
    std::sort(squares.begin(), squares.end());
    const std::size_t kept = squares.size() - squares.size() / 20;
    double sum = 0;
    for (std::size_t i = 0; i < kept; ++i) {
        sum += squares[i];
    }
    return std::sqrt(sum / static_cast<double>(kept) / 3);
}

double SquaredDistance(const Triple& a, const Triple& b) noexcept
{
    return (a[0] - b[0]) * (a[0] - b[0]) + (a[1] - b[1]) * (a[1] - b[1]) + (a[2] - b[2]) * (a[2] - b[2]);
}

/// Codes at the end of their range say only that something was beyond.
bool IsCutOff(const Triple& codes) noexcept
{
    return std::any_of(codes.begin(), codes.end(), [](double code) { return code < 1.5 || code > 253.5; });
}

/// Luma from black on, and chroma from its middle on.
struct LevelPoint {
    Triple was{};
    Triple is{};
};

double LevelResidual(const std::vector<LevelPoint>& points, const LevelFit& fit)
{
    const double angle = fit.hueDegrees * kPi / 180;
    const double alike = fit.saturation * std::cos(angle);
    const double turned = fit.saturation * std::sin(angle);
    double squares = 0;
    for (const auto& [was, is] : points) {
        squares += SquaredDistance({fit.gain * was[0] + fit.offset, alike * was[1] - turned * was[2],
                                    turned * was[1] + alike * was[2]},
                                   is);
    }
    return std::sqrt(squares / static_cast<double>(points.size()) / 3);
}

/// Leaves out of a full fit what the codes do without: fewest changes first.
void TakeSimplest(const std::vector<LevelPoint>& points, LevelFit& fit)
{
    double isProduct = 0;
    double wasSquares = 0;
    double difference = 0;
    for (const auto& [was, is] : points) {
        isProduct += was[0] * is[0];
        wasSquares += was[0] * was[0];
        difference += (is[0] - was[0]) / static_cast<double>(points.size());
    }
    const double enough = std::max(fit.residual * 1.15, fit.residual + 0.1);
    LevelFit best = fit;
    int fewest = 5;
    for (const bool hasGain : {false, true}) {
        for (const bool hasOffset : {false, true}) {
            for (const int chroma : {0, 1, 2}) { // left alone, multiplied like luma, by itself
                for (const bool hasHue : {false, true}) {
                    LevelFit tried = fit;
                    tried.gain = !hasGain         ? 1
                                 : hasOffset      ? fit.gain
                                 : wasSquares > 0 ? isProduct / wasSquares
                                                  : 1;
                    tried.offset = !hasOffset ? 0 : hasGain ? fit.offset : difference;
                    tried.saturation = chroma == 0 ? 1 : chroma == 1 ? tried.gain : fit.saturation;
                    tried.hueDegrees = hasHue ? fit.hueDegrees : 0;
                    tried.residual = LevelResidual(points, tried);
                    const int changes =
                        (hasGain ? 1 : 0) + (hasOffset ? 1 : 0) + (chroma == 2 ? 1 : 0) + (hasHue ? 1 : 0);
                    const bool isNearer = changes == fewest && tried.residual < best.residual;
                    if (tried.residual <= enough && (changes < fewest || isNearer)) {
                        fewest = changes;
                        best = tried;
                    }
                }
            }
        }
    }
    fit = best;
}

std::vector<LevelPoint> LevelPoints(const std::vector<ColorPair>& pairs, const Coding& expected)
{
    // R'G'B' codes are fitted as luma and differences too, by BT.709.
    const Coding coding = expected.isRgb ? Coding{false, 1, true} : expected;
    const Triple zero{coding.isFull ? 0.0 : 16.0, 128, 128};
    std::vector<LevelPoint> points;
    for (const ColorPair& pair : pairs) {
        const Triple was = Encode(coding, pair.rgb);
        const Triple is = expected.isRgb ? Encode(coding, Decode(expected, pair.found)) : pair.found;
        if (!IsCutOff(pair.found) && !IsCutOff(Encode(expected, pair.rgb))) {
            points.push_back({{was[0] - zero[0], was[1] - zero[1], was[2] - zero[2]},
                              {is[0] - zero[0], is[1] - zero[1], is[2] - zero[2]}});
        }
    }
    return points;
}

} // namespace

Triple Encode(const Coding& coding, const Triple& rgb) noexcept
{
    if (coding.isRgb) {
        return {rgb[0] * 255, rgb[1] * 255, rgb[2] * 255};
    }
    const Triple ycc = ToDifferences(WeightsOf(coding.matrix), rgb);
    return coding.isFull ? Triple{255 * ycc[0], 128 + 255 * ycc[1], 128 + 255 * ycc[2]}
                         : Triple{16 + 219 * ycc[0], 128 + 224 * ycc[1], 128 + 224 * ycc[2]};
}

Triple Decode(const Coding& coding, const Triple& codes) noexcept
{
    if (coding.isRgb) {
        return {codes[0] / 255, codes[1] / 255, codes[2] / 255};
    }
    const Triple ycc = coding.isFull
                           ? Triple{codes[0] / 255, (codes[1] - 128) / 255, (codes[2] - 128) / 255}
                           : Triple{(codes[0] - 16) / 219, (codes[1] - 128) / 224, (codes[2] - 128) / 224};
    return FromDifferences(WeightsOf(coding.matrix), ycc);
}

std::vector<Hypothesis> Hypotheses(const Coding& expected)
{
    return Listing(expected).Make();
}

double ResidualOf(const Hypothesis& hypothesis, const std::vector<ColorPair>& pairs)
{
    std::vector<double> squares;
    squares.reserve(pairs.size());
    for (const ColorPair& pair : pairs) {
        squares.push_back(SquaredDistance(hypothesis.predict(pair), pair.found));
    }
    return TrimmedRoot(std::move(squares));
}

double DistanceOf(const Hypothesis& a, const Hypothesis& b, const std::vector<ColorPair>& pairs)
{
    std::vector<double> squares;
    squares.reserve(pairs.size());
    for (const ColorPair& pair : pairs) {
        squares.push_back(SquaredDistance(a.predict(pair), b.predict(pair)));
    }
    return TrimmedRoot(std::move(squares));
}

LevelFit FitLevels(const std::vector<ColorPair>& pairs, const Coding& expected, double noise)
{
    const std::vector<LevelPoint> points = LevelPoints(pairs, expected);
    LevelFit fit;
    if (points.size() < 2) {
        return fit;
    }
    const auto count = static_cast<double>(points.size());
    double meanWas = 0;
    double meanIs = 0;
    for (const LevelPoint& point : points) {
        meanWas += point.was[0] / count;
        meanIs += point.is[0] / count;
    }
    double spread = 0;
    double product = 0;
    double along = 0;
    double across = 0;
    double chroma = 0;
    for (const auto& [was, is] : points) {
        spread += (was[0] - meanWas) * (was[0] - meanWas);
        product += (was[0] - meanWas) * (is[0] - meanIs);
        along += was[1] * is[1] + was[2] * is[2];
        across += was[1] * is[2] - was[2] * is[1];
        chroma += was[1] * was[1] + was[2] * was[2];
    }
    const double level = std::sqrt(spread / count);
    const double radius = std::sqrt(chroma / count);
    // So many codes tell gain and hue to some percent.
    fit.hasLuma = level > 15;
    fit.hasChroma = radius > 10;
    fit.gain = fit.hasLuma ? product / spread : 1;
    fit.offset = meanIs - fit.gain * meanWas;
    const double angle = fit.hasChroma ? std::atan2(across, along) : 0;
    fit.saturation = fit.hasChroma ? std::hypot(along, across) / chroma : 1;
    fit.hueDegrees = angle * 180 / kPi;
    fit.residual = LevelResidual(points, fit);
    TakeSimplest(points, fit);
    // Codec errors are alike all over a picture: more patches do not average them away.
    const double error = std::max(noise, fit.residual);
    fit.gainUncertainty = fit.hasLuma ? error / level : 1;
    fit.offsetUncertainty = fit.hasLuma ? error * std::hypot(1, meanWas / level) : error;
    fit.saturationUncertainty = fit.hasChroma ? error / radius : 1;
    fit.hueUncertainty = fit.hasChroma ? error / radius * 180 / kPi : 180;
    return fit;
}

} // namespace tessel::verify::judge
