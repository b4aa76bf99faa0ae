#include "Clipping.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tessel::verify::judge {
namespace {

/// Levels of one kind of component: Y' or R', G', B'; or Cb and Cr.
struct Limits {
    CodeSpan level;
    CodeSpan chroma{0, 255};

    [[nodiscard]] const CodeSpan& Of(std::size_t part, bool isRgb) const noexcept
    {
        return isRgb || part == 0 ? level : chroma;
    }
};

Triple Cut(const Triple& codes, const Limits& limits, bool isRgb) noexcept
{
    Triple cut = codes;
    for (std::size_t part = 0; part < 3; ++part) {
        const CodeSpan& span = limits.Of(part, isRgb);
        cut[part] = std::clamp(codes[part], span.lowest, span.highest);
    }
    return cut;
}

/// What the samples themselves hold.
Limits Widest(const Coding& coding) noexcept
{
    return coding.isFloat ? Limits{{-1e9, 1e9}, {-1e9, 1e9}} : Limits{{0, 255}, {0, 255}};
}

Limits Nominal(const Coding& coding) noexcept
{
    return coding.isRgb || coding.isFull ? Limits{{0, 255}, {0, 255}} : Limits{{16, 235}, {16, 240}};
}

/// The outermost codes that came back.
Limits Outermost(const Coding& coding, const std::vector<ColorPair>& pairs) noexcept
{
    Limits limits{{1e9, -1e9}, {1e9, -1e9}};
    for (const ColorPair& pair : pairs) {
        for (std::size_t part = 0; part < 3; ++part) {
            CodeSpan& span = coding.isRgb || part == 0 ? limits.level : limits.chroma;
            span.lowest = std::min(span.lowest, pair.found[part]);
            span.highest = std::max(span.highest, pair.found[part]);
        }
    }
    // Chroma that is nearly gone was not cut off.
    constexpr double kLeastChroma = 64;
    limits.chroma.lowest = std::min(limits.chroma.lowest, 128 - kLeastChroma);
    limits.chroma.highest = std::max(limits.chroma.highest, 128 + kLeastChroma);
    return limits;
}

/// "16..235", or "0.." where only the lower end is cut.
std::string TextOf(const CodeSpan& span, const CodeSpan& clips)
{
    const std::string low = clips.lowest < span.lowest - 1 ? fmt::format("{:.0f}", span.lowest) : "";
    const std::string high = clips.highest > span.highest + 1 ? fmt::format("{:.0f}", span.highest) : "";
    return low + ".." + high;
}

CodeSpan SpanOf(const std::vector<Triple>& codes, bool isRgb) noexcept
{
    CodeSpan span{1e9, -1e9};
    for (const Triple& each : codes) {
        for (std::size_t part = 0; part < (isRgb ? 3U : 1U); ++part) {
            span.lowest = std::min(span.lowest, each[part]);
            span.highest = std::max(span.highest, each[part]);
        }
    }
    return span;
}

} // namespace

std::optional<ClippingFit> FitClipping(const Coding& expected, const std::vector<ColorPair>& pairs,
                                       double least)
{
    const Limits limits = Outermost(expected, pairs);
    const Limits widest = Widest(expected);
    ClippingFit fit;
    std::vector<Triple> clips;
    bool hasInner = false;
    for (const ColorPair& pair : pairs) {
        for (std::size_t part = 0; part < (expected.isRgb ? 3U : 1U); ++part) {
            hasInner = hasInner || (pair.found[part] > limits.level.lowest + least &&
                                    pair.found[part] < limits.level.highest - least);
        }
        const Triple codes = clips.emplace_back(Cut(Encode(expected, pair.rgb), widest, expected.isRgb));
        const Triple cut = Cut(codes, limits, expected.isRgb);
        if (SquaredDistance(codes, cut) > least * least) {
            ++fit.patches;
            fit.residual += SquaredDistance(cut, pair.found) / 3;
            fit.plainDistance += SquaredDistance(codes, pair.found) / 3;
        }
    }
    // Where all codes are outermost ones, anything could have brought them there.
    if (fit.patches == 0 || !hasInner) {
        return std::nullopt;
    }
    fit.residual = std::sqrt(fit.residual / fit.patches);
    fit.plainDistance = std::sqrt(fit.plainDistance / fit.patches);
    const CodeSpan clip = SpanOf(clips, expected.isRgb);
    const std::string found = TextOf(limits.level, clip);
    fit.hypothesis.ids = {id::kColorClipped};
    fit.hypothesis.message =
        found == ".." ? "chroma is cut off" : fmt::format("codes outside {} are cut off", found);
    fit.hypothesis.found = {
        found == ".." ? fmt::format("chroma {:.0f}..{:.0f}", limits.chroma.lowest, limits.chroma.highest)
                      : found};
    fit.hypothesis.expected = {fmt::format("{:.0f}..{:.0f}", clip.lowest, clip.highest)};
    fit.hypothesis.predict = [expected, limits, widest](const ColorPair& pair) {
        return Cut(Cut(Encode(expected, pair.rgb), widest, expected.isRgb), limits, expected.isRgb);
    };
    return fit;
}

bool ShowsClipping(const Coding& expected, const std::vector<ColorPair>& pairs, double least)
{
    const Limits nominal = Nominal(expected);
    const Limits widest = Widest(expected);
    return std::any_of(pairs.begin(), pairs.end(), [&](const ColorPair& pair) {
        const Triple codes = Cut(Encode(expected, pair.rgb), widest, expected.isRgb);
        return SquaredDistance(codes, Cut(codes, nominal, expected.isRgb)) > least * least;
    });
}

} // namespace tessel::verify::judge
