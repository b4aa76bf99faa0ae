#include "FieldDecision.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tessel::verify::judge {
namespace {

using enum FieldModel;

// Explanations that predict the same tie, and the first one wins: the plainest comes first.
constexpr std::array kHypotheses = std::to_array<FieldHypothesis>({
    {FieldKind::Right, Right, Right},
    {FieldKind::Moved, Moved, Moved},
    {FieldKind::Swapped, PairsExchanged, PairsExchanged},
    {FieldKind::OneRowOff, OneRowDown, OneRowDown},
    {FieldKind::OneRowOff, OneRowUp, OneRowUp},
    {FieldKind::Blended, PairsMixed, PairsMixed},
    {FieldKind::Blended, RowsMixed, RowsMixed},
    {FieldKind::FramesMixed, MixedWithNext, MixedWithNext},
    {FieldKind::FramesMixed, MixedWithLast, MixedWithLast},
    {FieldKind::Shifted, LowerFromNext, LowerFromNext},
    {FieldKind::Shifted, UpperFromNext, UpperFromNext},
    {FieldKind::Shifted, LowerFromLast, LowerFromLast},
    {FieldKind::Shifted, UpperFromLast, UpperFromLast},
    {FieldKind::OneField, UpperDoubled, UpperDoubled, MissingRows::Doubled},
    {FieldKind::OneField, LowerDoubled, LowerDoubled, MissingRows::Doubled},
    {FieldKind::OneField, UpperBetween, UpperBetween, MissingRows::Interpolated},
    {FieldKind::OneField, LowerBetween, LowerBetween, MissingRows::Interpolated},
    {FieldKind::OneField, UpperAdaptive, UpperAdaptive, MissingRows::Interpolated},
    {FieldKind::OneField, LowerAdaptive, LowerAdaptive, MissingRows::Interpolated},
    {FieldKind::OneField, UpperStretched, UpperStretched, MissingRows::Interpolated},
    {FieldKind::OneField, LowerStretched, LowerStretched, MissingRows::Interpolated},
    {FieldKind::Bobbed, UpperDoubled, LowerDoubled, MissingRows::Doubled},
    {FieldKind::Bobbed, LowerDoubled, UpperDoubled, MissingRows::Doubled},
    {FieldKind::Bobbed, UpperBetween, LowerBetween, MissingRows::Interpolated},
    {FieldKind::Bobbed, LowerBetween, UpperBetween, MissingRows::Interpolated},
    {FieldKind::Bobbed, UpperAdaptive, LowerAdaptiveNext, MissingRows::Interpolated},
    {FieldKind::Bobbed, LowerAdaptiveNext, UpperAdaptive, MissingRows::Interpolated},
    {FieldKind::Bobbed, LowerAdaptive, UpperAdaptiveNext, MissingRows::Interpolated},
    {FieldKind::Bobbed, UpperAdaptiveNext, LowerAdaptive, MissingRows::Interpolated},
    {FieldKind::Bobbed, UpperStretched, LowerStretched, MissingRows::Interpolated},
    {FieldKind::Bobbed, LowerStretched, UpperStretched, MissingRows::Interpolated},
});
constexpr std::size_t kRight = 0;

// Neighbouring samples err together, so that one in so many counts.
constexpr double kDependentSamples = 4;
// What rounding alone leaves, as a variance in 8-bit codes.
constexpr double kLeastNoise = 0.1;
// A share between nothing (0) and the whole fault (1) is told when it is known better than this.
constexpr double kTellingShare = 0.4;

/// Sums over all pictures for pairs of hypotheses.
class PairSums {
public:
    explicit PairSums(std::span<const FieldEvidence> evidence)
    {
        for (const FieldEvidence& picture : evidence) {
            (picture.picture % 2 == 0 ? mEven : mOdd) += picture.products;
        }
    }

    [[nodiscard]] double Residual(std::size_t a) const noexcept { return Product(a, a); }
    /// The squared distance between what two hypotheses predict.
    [[nodiscard]] double Apart(std::size_t a, std::size_t b) const noexcept
    {
        return std::max(0.0, Product(a, a) + Product(b, b) - 2 * Product(a, b));
    }
    [[nodiscard]] double Samples() const noexcept { return mEven.samples + mOdd.samples; }
    [[nodiscard]] double Root(std::size_t a) const noexcept
    {
        return std::sqrt(Residual(a) / std::max(1.0, Samples()));
    }
    /// Whether both kinds of pictures were seen, so that something in turns can be told.
    [[nodiscard]] bool HasBoth() const noexcept { return mEven.samples > 0 && mOdd.samples > 0; }

private:
    [[nodiscard]] double Product(std::size_t a, std::size_t b) const noexcept
    {
        const auto of = [](FieldModel model) { return static_cast<std::size_t>(model); };
        return mEven.at[of(kHypotheses[a].even)][of(kHypotheses[b].even)] +
               mOdd.at[of(kHypotheses[a].odd)][of(kHypotheses[b].odd)];
    }

    FieldProducts mEven;
    FieldProducts mOdd;
};

/// How well the share of a difference `apart` is known beside noise: two standard deviations.
double ShareUncertainty(double apart, double noise) noexcept
{
    return apart > 0 ? 2 * std::sqrt(kDependentSamples * noise / apart) : 1e9;
}

} // namespace

FieldDecision Decide(std::span<const FieldEvidence> evidence, double leastApart)
{
    const PairSums sums(evidence);
    const auto isPossible = [&](std::size_t h) {
        return kHypotheses[h].kind != FieldKind::Bobbed || sums.HasBoth();
    };
    std::size_t best = kRight;
    for (std::size_t h = 0; h < kHypotheses.size(); ++h) {
        // Sums of floats agree to some millionths.
        if (isPossible(h) && sums.Residual(h) < sums.Residual(best) * (1 - 1e-5)) {
            best = h;
        }
    }
    const double noise = std::max(kLeastNoise, sums.Residual(best) / std::max(1.0, sums.Samples()));
    // The difference of two residuals in terms of a share: 0.5 is half way from `a` to `b`.
    const auto shareOf = [&](std::size_t a, std::size_t b) {
        return (sums.Residual(a) - sums.Residual(b)) / (2 * sums.Apart(a, b)) + 0.5;
    };

    const double least = leastApart * std::max(1.0, sums.Root(best));
    const auto isTold = [&](std::size_t h) { return sums.Apart(kRight, h) >= least * least * sums.Samples(); };

    FieldDecision decision;
    if (!isTold(best)) {
        best = kRight;
    }
    if (best != kRight) {
        const double uncertainty = ShareUncertainty(sums.Apart(kRight, best), noise);
        const double share = shareOf(kRight, best);
        if (share - uncertainty <= 0.5) {
            decision.isSure = uncertainty > kTellingShare; // too faint to say anything
            if (decision.isSure) {
                best = kRight;
            }
        }
    }
    decision.best = kHypotheses[best];
    decision.residual = sums.Root(best);
    std::size_t second = kHypotheses.size();
    for (std::size_t h = 0; h < kHypotheses.size(); ++h) {
        // A frame that hardly moved is the right one.
        const bool isMoved =
            kHypotheses[h].kind == FieldKind::Moved && sums.Apart(kRight, h) > kLeastNoise * sums.Samples();
        if (isPossible(h) && (kHypotheses[h].kind != FieldKind::Moved || isMoved) &&
            kHypotheses[h].kind != kHypotheses[best].kind &&
            (second == kHypotheses.size() || sums.Residual(h) < sums.Residual(second))) {
            second = h;
        }
    }
    decision.second = kHypotheses[second].kind;
    decision.secondResidual = sums.Root(second);
    decision.isSecondAsLikely = best != kRight && decision.second != FieldKind::Right &&
                                ShareUncertainty(sums.Apart(best, second), noise) > 0.5;
    for (std::size_t h = 1; h < kHypotheses.size(); ++h) {
        if (isPossible(h) && isTold(h) && ShareUncertainty(sums.Apart(kRight, h), noise) < kTellingShare) {
            decision.isVisible[static_cast<std::size_t>(kHypotheses[h].kind)] = true;
        }
    }
    return decision;
}

} // namespace tessel::verify::judge
