#include "CodeDepth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

namespace tessel::verify::judge {
namespace {

constexpr int kFewestBits = 3;
constexpr double kMost = 0.9995; // share of samples that obey: damaged ones and edges are forgiven

/// Codes of `bits` bits in samples of `wide` bits: multiples of a power of two, as limited range and shifts
/// have them, or spread over the whole range, as R'G'B' and repeated bits have them.
bool IsMultiple(std::uint32_t code, int wide, int bits) noexcept
{
    return code % (1U << static_cast<unsigned>(wide - bits)) == 0;
}

std::uint32_t Spread(std::uint32_t level, int wide, int bits) noexcept
{
    const double scale = (std::exp2(wide) - 1) / (std::exp2(bits) - 1);
    return static_cast<std::uint32_t>(std::floor(level * scale + 0.5));
}

/// Bits that are repeated below themselves: abcdef becomes abcdefab.
bool IsRepeated(std::uint32_t code, int wide, int bits) noexcept
{
    const int spare = wide - bits;
    if (spare > bits) {
        return false;
    }
    const std::uint32_t level = code >> static_cast<unsigned>(spare);
    return (level << static_cast<unsigned>(spare) | level >> static_cast<unsigned>(bits - spare)) == code;
}

bool IsSpread(std::uint32_t code, int wide, int bits) noexcept
{
    const double scale = (std::exp2(wide) - 1) / (std::exp2(bits) - 1);
    const auto level = static_cast<std::uint32_t>(std::floor(code / scale + 0.5));
    return Spread(level, wide, bits) == code;
}

template <class Codes>
int BitsOf(const Codes& codes, int wide)
{
    std::int64_t all = 0;
    for (const auto& [code, count] : codes) {
        all += count;
    }
    for (int bits = kFewestBits; bits < wide; ++bits) {
        std::int64_t multiples = 0;
        std::int64_t spread = 0;
        std::int64_t repeated = 0;
        for (const auto& [code, count] : codes) {
            // White at the end of the samples is what 11111 becomes where codes are repeated or clipped.
            const bool isEnd = code == 0 || code == (1U << static_cast<unsigned>(wide)) - 1;
            multiples += isEnd || IsMultiple(code, wide, bits) ? count : 0;
            spread += IsSpread(code, wide, bits) ? count : 0;
            repeated += IsRepeated(code, wide, bits) ? count : 0;
        }
        if (static_cast<double>(std::max({multiples, spread, repeated})) >= kMost * static_cast<double>(all)) {
            return bits;
        }
    }
    return wide;
}

constexpr std::uint64_t KeyOf(std::uint32_t expected, std::uint32_t found) noexcept
{
    return std::uint64_t{expected} << 32U | found;
}

constexpr std::uint32_t ExpectedOf(std::uint64_t key) noexcept
{
    return static_cast<std::uint32_t>(key >> 32U);
}

constexpr std::uint32_t FoundOf(std::uint64_t key) noexcept
{
    return static_cast<std::uint32_t>(key & 0xFFFFFFFFU);
}

} // namespace

void CodeCounts::Take(std::uint32_t expected, std::uint32_t found, bool isLevelRun)
{
    ++mCounts[KeyOf(expected, found)];
    if (isLevelRun) {
        ++mRuns;
        mChanges += found == mLastFound ? 0 : 1;
    }
    mLastFound = found;
}

CodeCounts::Codes CodeCounts::CodesOf(bool isFound) const
{
    Codes codes;
    for (const auto& [key, count] : mCounts) {
        codes[isFound ? FoundOf(key) : ExpectedOf(key)] += count;
    }
    return codes;
}

int CodeCounts::FoundBits() const
{
    return BitsOf(CodesOf(true), mBits);
}

int CodeCounts::ExpectedBits() const
{
    return BitsOf(CodesOf(false), mBits);
}

int CodeCounts::ExpectedCodes() const
{
    return static_cast<int>(CodesOf(false).size());
}

int CodeCounts::FoundCodes() const
{
    return static_cast<int>(CodesOf(true).size());
}

int CodeCounts::CodesChangedBy(int bits) const
{
    int changed = 0;
    for (const auto& [code, count] : CodesOf(false)) {
        changed += IsMultiple(code, mBits, bits) || IsSpread(code, mBits, bits) ? 0 : 1;
    }
    return changed;
}

double CodeCounts::ShareExplainedBy(int bits) const
{
    const double scale = (std::exp2(mBits) - 1) / (std::exp2(bits) - 1);
    const auto shift = static_cast<unsigned>(mBits - bits);
    const auto highest = (1U << static_cast<unsigned>(mBits)) - 1;
    std::int64_t all = 0;
    std::int64_t explained = 0;
    for (const auto& [key, count] : mCounts) {
        const std::uint32_t expected = ExpectedOf(key);
        const std::uint32_t cut = expected >> shift << shift;
        const std::uint32_t rounded = std::min((expected + (1U << shift) / 2) >> shift << shift, highest);
        const std::array<std::uint32_t, 4> explanations{
            cut, rounded, Spread(static_cast<std::uint32_t>(expected / scale + 0.5), mBits, bits),
            Spread(static_cast<std::uint32_t>(expected / scale), mBits, bits)};
        const bool isExplained =
            std::find(explanations.begin(), explanations.end(), FoundOf(key)) != explanations.end();
        all += count;
        explained += isExplained ? count : 0;
    }
    return all == 0 ? 0 : static_cast<double>(explained) / static_cast<double>(all);
}

bool CodeCounts::IsDithered() const noexcept
{
    constexpr double kShare = 0.02; // fewer changes are edges
    return mRuns > 0 && static_cast<double>(mChanges) > kShare * static_cast<double>(mRuns);
}

std::optional<StairFit> FitStairs(const std::vector<StairPoint>& points, int lost)
{
    constexpr std::size_t kFewestPoints = 40;
    constexpr double kAlike = 4; // neighbouring means err together
    // Of three codes, a gain, an offset and a staircase explain whatever came back.
    constexpr std::size_t kFewestCodes = 8;
    std::set<double> codes;
    for (const StairPoint& point : points) {
        codes.insert(point.expected);
    }
    if (points.size() < kFewestPoints || codes.size() < kFewestCodes) {
        return std::nullopt;
    }
    const auto count = static_cast<double>(points.size());
    const double step = std::exp2(lost);
    // Least squares of the error over 1, the code, and the staircase; the first two are taken out of both.
    const auto stairOf = [&](double code) { return std::floor(code / step) * step - code + (step - 1) / 2; };
    double meanX = 0;
    double meanE = 0;
    double meanS = 0;
    for (const StairPoint& point : points) {
        meanX += point.expected / count;
        meanE += (point.found - point.expected) / count;
        meanS += stairOf(point.expected) / count;
    }
    double xx = 0;
    double xe = 0;
    double xs = 0;
    double es = 0;
    double ss = 0;
    double ee = 0;
    for (const StairPoint& point : points) {
        const double x = point.expected - meanX;
        const double e = point.found - point.expected - meanE;
        const double s = stairOf(point.expected) - meanS;
        xx += x * x;
        xe += x * e;
        xs += x * s;
        es += e * s;
        ss += s * s;
        ee += e * e;
    }
    if (xx <= 0 || ss - xs * xs / xx < 0.05 * count) {
        return std::nullopt; // the codes hardly meet this staircase
    }
    const double alone = ss - xs * xs / xx;
    const double product = es - xe * xs / xx;
    StairFit fit;
    fit.share = product / alone;
    fit.explained = fit.share * product;
    const double left = std::max(0.0, ee - xe * xe / xx - fit.explained);
    fit.uncertainty = 2 * std::sqrt(kAlike * left / (count - 3) / alone);
    return fit;
}

} // namespace tessel::verify::judge
