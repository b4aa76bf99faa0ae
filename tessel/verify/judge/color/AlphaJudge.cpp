#include "AlphaJudge.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

constexpr double kOpaque = 0.996;     // less than half an 8-bit code below 1
constexpr double kNothing = 0.004;    // likewise above 0
constexpr double kTransparent = 0.98; // alpha below this shows whether it is kept

std::string MessageOf(const std::vector<ColorPair>& pairs, double off)
{
    const auto all = [&](auto holds) { return std::all_of(pairs.begin(), pairs.end(), holds); };
    if (all([](const ColorPair& pair) { return pair.foundAlpha > kOpaque; })) {
        return "alpha is lost: it is opaque everywhere";
    }
    if (all([](const ColorPair& pair) { return pair.foundAlpha < kNothing; })) {
        return "alpha is lost: it is 0 everywhere";
    }
    if (all([](const ColorPair& pair) { return std::abs(1 - pair.alpha - pair.foundAlpha) < 2.0 / 255; })) {
        return "alpha is turned over: what was opaque is transparent";
    }
    return fmt::format("alpha is off by up to {:.1f} codes", off);
}

} // namespace

void JudgeAlpha(const std::vector<ColorPair>& pairs, double noise, Findings& findings)
{
    double off = 0;
    double least = 1;
    for (const ColorPair& pair : pairs) {
        off = std::max(off, std::abs(pair.foundAlpha - pair.alpha) * 255);
        least = std::min(least, pair.alpha);
    }
    const double tolerance = findings.Limits().Of(id::kColorAlpha);
    if (off <= tolerance - noise) {
        if (least < kTransparent) {
            findings.AsExpected(id::kColorAlpha);
        } else {
            findings.NotVisible(id::kColorAlpha);
        }
        return;
    }
    const std::string message = MessageOf(pairs, off);
    Finding& finding =
        off > tolerance + noise
            ? findings.Fault(id::kColorAlpha, message)
            : findings.Undecided(id::kColorAlpha, message + ", within the uncertainty of the tolerance");
    finding.expected = 0.0;
    finding.found = off;
    finding.uncertainty = noise;
}

} // namespace tessel::verify::judge
