#include "ColorJudge.h"

#include "AlphaJudge.h"
#include "ColorEvidence.h"
#include "LevelReport.h"
#include "hypotheses/Clipping.h"
#include "hypotheses/Levels.h"

#include <tessel/verify/judge/container/CodePoints.h>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessel::verify::judge {
namespace {

/// What a list of hypotheses can decide.
constexpr std::array kListed{id::kColorMatrix, id::kColorRange, id::kColorChannels, id::kColorChromaSwapped,
                             id::kColorTransfer};
constexpr std::array kFitted{id::kColorGain, id::kColorOffset, id::kColorSaturation, id::kColorHue};

/// An explanation that leaves so much less than none is right, though the codes are off by no more than about
/// the tolerance.
constexpr double kPlainlyBetter = 3;

/// The judgement of one movie's colours.
class ColorJudging {
public:
    ColorJudging(const ColorCase& given, Findings& findings)
        : mGiven(given), mFindings(findings), mColors(given, findings.Limits())
    {
    }

    void Run()
    {
        if (!mGiven.clip.fileKind.HasAlpha() || !mGiven.movie.format.hasAlpha) {
            mFindings.NotVisible(id::kColorAlpha);
        } else {
            JudgeAlpha(mColors.pairs, NoiseOf(mFindings.Limits().picture), mFindings);
        }
        if (mColors.Off() > mColors.tolerance - mColors.noise) {
            Explain();
            return;
        }
        // A tolerance that was asked for says what is fine; a wrong tag explains other codes by itself.
        const bool isSettled = mFindings.Limits().chosen.count(std::string(id::kColorMatrix)) != 0 ||
                               mFindings.HasFault(id::kContainerMatrix) ||
                               mFindings.HasFault(id::kContainerRange);
        const std::optional<std::size_t> faint = isSettled ? std::nullopt : mColors.FaintMatrix();
        if (faint) {
            TellWinner(*faint, nullptr, 0);
        } else {
            TellFine();
            TellContradictedTags();
        }
    }

private:
    void Tell(std::string_view check, bool isVisible)
    {
        if (isVisible) {
            mFindings.AsExpected(check);
        } else {
            mFindings.NotVisible(check);
        }
    }

    /// Nothing is wrong that shows: each check is fine where a fault of it would have shown.
    void TellFine()
    {
        TellListedFine();
        TellClipping();
        const LevelFit fit = FitLevels(mColors.pairs, mColors.coding, mColors.FitNoise());
        Tell(id::kColorGain, fit.hasLuma);
        Tell(id::kColorOffset, true);
        Tell(id::kColorSaturation, fit.hasChroma);
        Tell(id::kColorHue, fit.hasChroma);
    }

    /// Checks of the list whose faults would have moved these colours.
    void TellListedFine()
    {
        for (const std::string_view check : kListed) {
            Tell(check, mColors.ShowsFaultOf(check));
        }
    }

    /// Few codes lie outside the nominal range: what became of them does not show in the residual of all.
    void TellClipping()
    {
        if (mColors.IsCutOff()) {
            const Hypothesis& hypothesis = mColors.clipping->hypothesis;
            Finding& finding =
                mFindings.Fault(id::kColorClipped, fmt::format("{} (residual {:.1f} codes)", hypothesis.message,
                                                               mColors.clipping->residual));
            finding.expected = hypothesis.expected.front();
            finding.found = hypothesis.found.front();
            return;
        }
        Tell(id::kColorClipped,
             ShowsClipping(mColors.coding, mColors.pairs, mColors.tolerance + mColors.noise));
    }

    /// Where codes are the clip's but the movie announces another coding, that is a part of the wrong tag.
    void TellContradictedTags()
    {
        const read::PictureFacts& movie = mGiven.movie;
        if (mColors.coding.isRgb) {
            return;
        }
        if (mFindings.HasFault(id::kContainerMatrix) && movie.matrix != 2 &&
            !IsSameMatrix(movie.matrix, mColors.coding.matrix)) {
            Finding& finding = mFindings.Fault(
                id::kColorMatrix, fmt::format("codes are {} where the file says {}",
                                              MatrixName(mColors.coding.matrix), MatrixName(movie.matrix)));
            finding.expected = MatrixName(movie.matrix);
            finding.found = MatrixName(mColors.coding.matrix);
        }
        if (mFindings.HasFault(id::kContainerRange) && movie.fullRange &&
            *movie.fullRange != mColors.coding.isFull) {
            const std::string_view is = mColors.coding.isFull ? "full" : "limited";
            const std::string_view said = mColors.coding.isFull ? "limited" : "full";
            Finding& finding = mFindings.Fault(
                id::kColorRange, fmt::format("codes are {} range where the file says {} range", is, said));
            finding.expected = std::string(said);
            finding.found = std::string(is);
        }
    }

    void Explain()
    {
        const double off = mColors.Off();
        std::size_t best = 1;
        for (std::size_t i = 1; i < mColors.list.size(); ++i) {
            // Two faults at once explain more than one does anyway: they must earn it.
            const double handicap =
                mColors.list[i].ids.size() > 1 && mColors.list[best].ids.size() == 1 ? 0.4 : 0;
            if (mColors.residuals[i] + handicap < mColors.residuals[best]) {
                best = i;
            }
        }
        const LevelFit fit = FitLevels(mColors.pairs, mColors.coding, mColors.FitNoise());
        const bool isListed = mColors.residuals[best] <= mColors.tolerance + mColors.noise;
        const bool isFitted =
            fit.residual <= mColors.tolerance + mColors.noise && IsBeyond(fit, mFindings.Limits());
        // Levels of one component alone move the mean of three less than their own tolerance.
        const bool isPlainLevel = isFitted && fit.residual < off / kPlainlyBetter;
        if (off <= mColors.tolerance + mColors.noise) {
            if (isPlainLevel) {
                TellFitted(fit);
            } else if (mColors.IsCutOff() && best + 1 == mColors.list.size()) {
                TellFine(); // but for what lies outside the levels
            } else if (mColors.residuals[best] < off / kPlainlyBetter) {
                TellWinner(best, nullptr, Alike());
            } else {
                TellUndecided(best, off);
            }
        } else if (isListed && (!isFitted || mColors.residuals[best] <= fit.residual + 0.5)) {
            TellWinner(best, isFitted && fit.residual <= mColors.residuals[best] + 0.3 ? &fit : nullptr,
                       Alike());
        } else if (isFitted) {
            TellFitted(fit);
        } else {
            TellUndecided(best, off);
        }
    }

    /// Codes by which an explanation may be off and still count as one of those that fit.
    [[nodiscard]] double Alike() const noexcept { return mColors.tolerance - mColors.noise; }

    /// @param levels  where they explain the codes as well
    /// @param alike   codes; a rival that is off by less fits as well
    void TellWinner(std::size_t best, const LevelFit* levels, double alike)
    {
        const Hypothesis& winner = mColors.list[best];
        std::string rivals;
        std::size_t runnerUp = 0;
        for (std::size_t i = 1; i < mColors.list.size(); ++i) {
            const bool isSimpler = mColors.list[i].ids.size() == 1;
            if (i == best || !isSimpler) {
                continue;
            }
            const bool isAlike = mColors.residuals[i] <= std::max(alike, mColors.residuals[best] + 0.3) &&
                                 DistanceOf(mColors.list[i], winner, mColors.pairs) < mColors.tolerance;
            if (isAlike) {
                rivals += ", or " + mColors.list[i].message;
            } else if (mColors.ChangesColors(mColors.list[i]) &&
                       (runnerUp == 0 || mColors.residuals[i] < mColors.residuals[runnerUp])) {
                runnerUp = i;
            }
        }
        const int changes = levels == nullptr ? 0 : ChangesOf(*levels);
        if (changes == 1) {
            rivals += ", or " + LevelMessages(*levels).front();
        }
        for (std::size_t part = 0; part < winner.ids.size(); ++part) {
            std::string message =
                part == 0 ? winner.message : fmt::format("the range is {}", winner.found[part]);
            if (part == 0 && !rivals.empty()) {
                message = fmt::format("one of: {}{}", message, rivals);
            }
            message += fmt::format(" (residual {:.1f} codes", mColors.residuals[best]);
            if (runnerUp != 0) {
                message += fmt::format("; next best {:.1f}: {}", mColors.residuals[runnerUp],
                                       mColors.list[runnerUp].message);
            }
            Finding& finding = mFindings.Fault(winner.ids[part], message + ")");
            finding.expected = winner.expected[part];
            finding.found = winner.found[part];
        }
        TellOthersFine(best);
    }

    /// Checks whose faults would have moved these colours elsewhere.
    void TellOthersFine(std::size_t best)
    {
        for (const std::string_view check : kListed) {
            if (!mFindings.HasFault(check)) {
                Tell(check, mColors.ShowsFaultBeside(check, best));
            }
        }
        if (!mFindings.HasFault(id::kColorClipped)) {
            mFindings.NotVisible(id::kColorClipped, "a movie without other faults of colour");
        }
        for (const std::string_view check : kFitted) {
            mFindings.AsExpected(check); // the winner explains the levels
        }
    }

    void TellFitted(const LevelFit& fit)
    {
        TellLevels(fit, mFindings);
        TellListedFine();
        mFindings.NotVisible(id::kColorClipped, "a movie without other faults of colour");
    }

    void TellUndecided(std::size_t best, double off)
    {
        const std::string_view check = mColors.list[best].ids.front();
        Finding& finding = mFindings.Undecided(
            check,
            fmt::format("codes are off by {:.1f} and nothing on the list explains it; nearest is that {} "
                        "(residual {:.1f} codes)",
                        off, mColors.list[best].message, mColors.residuals[best]));
        finding.expected = 0.0;
        finding.found = off;
        finding.uncertainty = mColors.noise;
        finding.unit = "codes";
    }

    const ColorCase& mGiven;
    Findings& mFindings;
    const ColorEvidence mColors;
};

} // namespace

void JudgeColor(const ColorCase& given, Findings& findings)
{
    if (given.sampler.Spots().empty()) {
        for (const std::string_view check : kListed) {
            findings.NotVisible(check);
        }
        for (const std::string_view check : kFitted) {
            findings.NotVisible(check);
        }
        findings.NotVisible(id::kColorAlpha);
        findings.NotVisible(id::kColorClipped);
        return;
    }
    ColorJudging(given, findings).Run();
}

} // namespace tessel::verify::judge
