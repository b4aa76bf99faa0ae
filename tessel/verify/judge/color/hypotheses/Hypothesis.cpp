#include "HypothesisList.h"

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

Triple Clipped(Triple codes) noexcept
{
    for (double& code : codes) {
        code = std::clamp(code, 0.0, 255.0);
    }
    return codes;
}

/// Of the mean of squares, without the worst twentieth.
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

} // namespace

void HypothesisList::AddCodes(std::vector<std::string_view> ids, std::string message,
                              std::vector<std::string> found, std::vector<std::string> expected, Way toCodes)
{
    Hypothesis& made = mList.emplace_back();
    made.ids = std::move(ids);
    made.message = std::move(message);
    made.found = std::move(found);
    made.expected = std::move(expected);
    made.predict = [toCodes = std::move(toCodes), isFloat = mCoding.isFloat](const ColorPair& pair) {
        return isFloat ? toCodes(pair) : Clipped(toCodes(pair));
    };
}

void HypothesisList::AddColors(std::vector<std::string_view> ids, std::string message,
                               std::vector<std::string> found, std::vector<std::string> expected, Way toRgb)
{
    AddCodes(std::move(ids), std::move(message), std::move(found), std::move(expected),
             [coding = mCoding, toRgb = std::move(toRgb)](const ColorPair& pair) {
                 return Encode(coding, toRgb(pair));
             });
}

std::vector<Hypothesis> Hypotheses(const Coding& expected)
{
    HypothesisList list(expected);
    list.AddColors({}, {}, {}, {}, [](const ColorPair& pair) { return pair.rgb; });
    AddMatricesAndRanges(list);
    AddComponents(list);
    AddTransfers(list);
    AddAlpha(list);
    AddChromaOfFields(list);
    return std::move(list).Taken();
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

} // namespace tessel::verify::judge
