#include "ColorJudge.h"

#include "AlphaJudge.h"
#include "RightCodings.h"
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

/// How far codes are off where nothing is wrong: rounding, and what codecs do to flat colours.
double NoiseOf(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless ? 0.25 : codec == CodecClass::Mezzanine ? 0.4 : 0.8;
}

/// In resampled pictures a spot's place is known to so many pixels.
constexpr double kPlaceUncertainty = 0.35;

/// How far codes may differ at spots where colours change from row to row.
double PlaceNoise(const ColorCase& given)
{
    const ColorSampler& sampler = given.sampler;
    const double pixels = given.chromaOff + (sampler.IsResampled() ? kPlaceUncertainty : 0);
    if (pixels == 0 || sampler.Spots().empty()) {
        return 0;
    }
    double squares = 0;
    for (const ColorSampler::Spot& spot : sampler.Spots()) {
        squares += spot.slope * spot.slope;
    }
    return 255 * pixels * std::sqrt(squares / static_cast<double>(sampler.Spots().size()));
}

/// A picture whose chroma is multiplied by less than this counts as grey.
constexpr double kNoChroma = 0.02;

/// An explanation that leaves so much less than none is right, though the codes are off by no more than about
/// the tolerance.
constexpr double kPlainlyBetter = 3;

/// The judgement of one movie's colours.
class Judging {
public:
    Judging(const ColorCase& given, Findings& findings)
        : mGiven(given), mFindings(findings), mNoise(NoiseOf(findings.Limits().picture) + PlaceNoise(given)),
          mTolerance(findings.Limits().Of(id::kColorMatrix) + given.lostStep / 2 + 2 * PlaceNoise(given))
    {
    }

    void Run()
    {
        ChooseCoding();
        if (!mGiven.clip.fileKind.HasAlpha() || !mGiven.movie.format.hasAlpha) {
            mFindings.NotVisible(id::kColorAlpha);
        } else {
            JudgeAlpha(mPairs, NoiseOf(mFindings.Limits().picture), mFindings);
        }
        const double off = mResiduals.front();
        if (off <= mTolerance - mNoise) {
            TellFine();
            TellContradictedTags();
        } else {
            Explain(off);
        }
    }

private:
    /// Takes the right coding that fits best, and all explanations of it.
    void ChooseCoding()
    {
        double best = 1e300;
        for (const Coding& coding : RightCodings(mGiven.clip, mGiven.movie)) {
            std::vector<ColorPair> pairs = PairsOf(mGiven.sampler.Spots(), coding);
            if (KeepsChromaOfFrames()) {
                MixChromaOfFields(pairs, coding);
            }
            std::vector<Hypothesis> list = Hypotheses(coding);
            const double residual = ResidualOf(list.front(), pairs);
            if (residual < best - 0.2) {
                best = residual;
                mCoding = coding;
                mPairs = std::move(pairs);
                mList = std::move(list);
            }
        }
        mClipping = FitClipping(mCoding, mPairs, mTolerance + mNoise);
        if (mClipping) {
            mList.push_back(mClipping->hypothesis);
        }
        for (const Hypothesis& hypothesis : mList) {
            mResiduals.push_back(ResidualOf(hypothesis, mPairs));
        }
    }

    /// A planar frame picture has one chroma for both fields, by its format.
    [[nodiscard]] bool KeepsChromaOfFrames() const
    {
        const exporting::PixelKind& kind = mGiven.clip.fileKind;
        return kind.storage == exporting::Storage::Planar420 && !kind.fieldPicture &&
               mGiven.movie.format.chromaShiftY > 0;
    }

    static void MixChromaOfFields(std::vector<ColorPair>& pairs, const Coding& coding)
    {
        for (ColorPair& pair : pairs) {
            Triple own = Encode(coding, pair.rgb);
            Triple other = Encode(coding, pair.otherField);
            for (const std::size_t part : {1U, 2U}) {
                own[part] = other[part] = (own[part] + other[part]) / 2;
            }
            pair.rgb = Decode(coding, own);
            pair.otherField = Decode(coding, other);
        }
    }

    /// Many spots average rounding away; what codecs do to flat colours less so.
    [[nodiscard]] double FitNoise() const noexcept { return mNoise / 4; }

    [[nodiscard]] bool IsVisible(const Hypothesis& hypothesis) const
    {
        return DistanceOf(mList.front(), hypothesis, mPairs) > mTolerance + mNoise;
    }

    /// Not where a colour without alpha is multiplied by it.
    [[nodiscard]] bool ChangesColors(const Hypothesis& hypothesis) const
    {
        constexpr double kNothing = 0.1; // codes
        return DistanceOf(mList.front(), hypothesis, mPairs) > kNothing;
    }

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
        const LevelFit fit = FitLevels(mPairs, mCoding, FitNoise());
        Tell(id::kColorGain, fit.hasLuma);
        Tell(id::kColorOffset, true);
        Tell(id::kColorSaturation, fit.hasChroma);
        Tell(id::kColorHue, fit.hasChroma);
    }

    /// Checks of the list whose faults would have moved these colours.
    void TellListedFine()
    {
        for (const std::string_view check : kListed) {
            Tell(check, std::any_of(mList.begin() + 1, mList.end(), [&](const Hypothesis& hypothesis) {
                     return hypothesis.ids.size() == 1 && hypothesis.ids.front() == check &&
                            IsVisible(hypothesis);
                 }));
        }
    }

    /// Whether codes beyond two levels came back at those levels.
    [[nodiscard]] bool IsCutOff() const
    {
        return mClipping && mClipping->plainDistance > mTolerance + mNoise &&
               mClipping->residual < mClipping->plainDistance / 2;
    }

    /// Few codes lie outside the nominal range: what became of them does not show in the residual of all.
    void TellClipping()
    {
        if (IsCutOff()) {
            const Hypothesis& hypothesis = mClipping->hypothesis;
            Finding& finding =
                mFindings.Fault(id::kColorClipped, fmt::format("{} (residual {:.1f} codes)", hypothesis.message,
                                                               mClipping->residual));
            finding.expected = hypothesis.expected.front();
            finding.found = hypothesis.found.front();
            return;
        }
        Tell(id::kColorClipped, ShowsClipping(mCoding, mPairs, mTolerance + mNoise));
    }

    /// Where codes are the clip's but the movie announces another coding, that is a part of the wrong tag.
    void TellContradictedTags()
    {
        const read::PictureFacts& movie = mGiven.movie;
        if (mCoding.isRgb) {
            return;
        }
        if (mFindings.HasFault(id::kContainerMatrix) && movie.matrix != 2 &&
            !IsSameMatrix(movie.matrix, mCoding.matrix)) {
            Finding& finding = mFindings.Fault(
                id::kColorMatrix, fmt::format("codes are {} where the file says {}", MatrixName(mCoding.matrix),
                                              MatrixName(movie.matrix)));
            finding.expected = MatrixName(movie.matrix);
            finding.found = MatrixName(mCoding.matrix);
        }
        if (mFindings.HasFault(id::kContainerRange) && movie.fullRange && *movie.fullRange != mCoding.isFull) {
            const std::string_view is = mCoding.isFull ? "full" : "limited";
            const std::string_view said = mCoding.isFull ? "limited" : "full";
            Finding& finding = mFindings.Fault(
                id::kColorRange, fmt::format("codes are {} range where the file says {} range", is, said));
            finding.expected = std::string(said);
            finding.found = std::string(is);
        }
    }

    void Explain(double off)
    {
        std::size_t best = 1;
        for (std::size_t i = 1; i < mList.size(); ++i) {
            // Two faults at once explain more than one does anyway: they must earn it.
            const double handicap = mList[i].ids.size() > 1 && mList[best].ids.size() == 1 ? 0.4 : 0;
            if (mResiduals[i] + handicap < mResiduals[best]) {
                best = i;
            }
        }
        const LevelFit fit = FitLevels(mPairs, mCoding, FitNoise());
        const bool isListed = mResiduals[best] <= mTolerance + mNoise;
        const bool isFitted = fit.residual <= mTolerance + mNoise && IsBeyond(fit);
        // Levels of one component alone move the mean of three less than their own tolerance.
        const bool isPlainLevel = isFitted && fit.residual < off / kPlainlyBetter;
        if (off <= mTolerance + mNoise) {
            if (isPlainLevel) {
                TellLevels(fit);
            } else if (IsCutOff() && best + 1 == mList.size()) {
                TellFine(); // but for what lies outside the levels
            } else if (mResiduals[best] < off / kPlainlyBetter) {
                TellWinner(best, nullptr);
            } else {
                TellUndecided(best, off);
            }
        } else if (isListed && (!isFitted || mResiduals[best] <= fit.residual + 0.5)) {
            TellWinner(best, isFitted && fit.residual <= mResiduals[best] + 0.3 ? &fit : nullptr);
        } else if (isFitted) {
            TellLevels(fit);
        } else {
            TellUndecided(best, off);
        }
    }

    /// @param levels  where they explain the codes as well
    void TellWinner(std::size_t best, const LevelFit* levels)
    {
        const Hypothesis& winner = mList[best];
        std::string rivals;
        std::size_t runnerUp = 0;
        for (std::size_t i = 1; i < mList.size(); ++i) {
            const bool isSimpler = mList[i].ids.size() == 1;
            if (i == best || !isSimpler) {
                continue;
            }
            const bool isAlike = mResiduals[i] <= std::max(mTolerance - mNoise, mResiduals[best] + 0.3) &&
                                 DistanceOf(mList[i], winner, mPairs) < mTolerance;
            if (isAlike) {
                rivals += ", or " + mList[i].message;
            } else if (ChangesColors(mList[i]) && (runnerUp == 0 || mResiduals[i] < mResiduals[runnerUp])) {
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
            message += fmt::format(" (residual {:.1f} codes", mResiduals[best]);
            if (runnerUp != 0) {
                message += fmt::format("; next best {:.1f}: {}", mResiduals[runnerUp], mList[runnerUp].message);
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
            if (mFindings.HasFault(check)) {
                continue;
            }
            const bool isVisible =
                std::any_of(mList.begin() + 1, mList.end(), [&](const Hypothesis& hypothesis) {
                    return hypothesis.ids.size() == 1 && hypothesis.ids.front() == check &&
                           IsVisible(hypothesis) &&
                           DistanceOf(mList[best], hypothesis, mPairs) > mTolerance + mNoise;
                });
            Tell(check, isVisible);
        }
        if (!mFindings.HasFault(id::kColorClipped)) {
            mFindings.NotVisible(id::kColorClipped, "a movie without other faults of colour");
        }
        for (const std::string_view check : kFitted) {
            mFindings.AsExpected(check); // the winner explains the levels
        }
    }

    [[nodiscard]] bool IsBeyond(const LevelFit& fit) const
    {
        const Tolerances& limits = mFindings.Limits();
        return std::abs(fit.gain - 1) > limits.Of(id::kColorGain) ||
               std::abs(fit.offset) > limits.Of(id::kColorOffset) ||
               std::abs(fit.saturation - 1) > limits.Of(id::kColorSaturation) ||
               std::abs(fit.hueDegrees) > limits.Of(id::kColorHue);
    }

    /// R'G'B' × gain scales chroma alike.
    [[nodiscard]] static double OwnSaturation(const LevelFit& fit) noexcept
    {
        return fit.chromaIsLikeLuma ? 1 : fit.saturation;
    }

    [[nodiscard]] static int ChangesOf(const LevelFit& fit) noexcept
    {
        return (fit.gain != 1 ? 1 : 0) + (fit.offset != 0 ? 1 : 0) + (OwnSaturation(fit) != 1 ? 1 : 0) +
               (fit.hueDegrees != 0 ? 1 : 0);
    }

    /// What changed, one sentence each, in the order of `kFitted`.
    [[nodiscard]] std::vector<std::string> LevelMessages(const LevelFit& fit) const
    {
        std::vector<std::string> messages;
        if (fit.gain != 1) {
            messages.push_back(fmt::format("levels are multiplied by {:.3f}", fit.gain));
        }
        if (fit.offset != 0) {
            messages.push_back(fmt::format("{:+.1f} codes are added to the levels", fit.offset));
        }
        if (OwnSaturation(fit) != 1) {
            messages.push_back(fmt::format("chroma is multiplied by {:.3f}", fit.saturation));
        }
        if (fit.hueDegrees != 0) {
            messages.push_back(fmt::format("hues are turned by {:.1f} degrees", fit.hueDegrees));
        }
        return messages;
    }

    /// A change that the codes are explained without is not reported, whatever its uncertainty.
    void TellLevel(std::string_view check, bool isVisible, const Measured& value, std::string message)
    {
        if (!isVisible) {
            mFindings.NotVisible(check);
        } else if (value.found == value.expected) {
            mFindings.AsExpected(check);
        } else {
            static_cast<void>(mFindings.Judge(check, value, std::move(message)));
        }
    }

    void TellLevels(const LevelFit& fit)
    {
        const double saturation = OwnSaturation(fit);
        if (fit.hasChroma && std::abs(saturation) < kNoChroma) {
            Finding& finding =
                mFindings.Fault(id::kColorSubsampling,
                                "no chroma is left, one of: it was not kept (4:0:0), or saturation is 0");
            finding.expected = std::string("chroma");
            finding.found = std::string("4:0:0");
        }
        std::string offsetMessage = fmt::format("{:+.1f} codes are added to the levels", fit.offset);
        if (!fit.hasLuma || fit.isGainOrOffset) {
            offsetMessage = fmt::format("one of: {}, or levels are multiplied", offsetMessage);
        }
        std::string gainMessage = fmt::format("levels are multiplied by {:.3f}", fit.gain);
        if (fit.isGainOrOffset) {
            gainMessage = fmt::format("one of: {}, or something is added to them", gainMessage);
        }
        TellLevel(id::kColorGain, fit.hasLuma, {1, fit.gain, fit.gainUncertainty}, std::move(gainMessage));
        TellLevel(id::kColorOffset, true, {0, fit.offset, fit.offsetUncertainty}, offsetMessage);
        TellLevel(id::kColorSaturation, fit.hasChroma, {1, saturation, fit.saturationUncertainty},
                  fmt::format("chroma is multiplied by {:.3f}", saturation));
        TellLevel(id::kColorHue, fit.hasChroma, {0, fit.hueDegrees, fit.hueUncertainty},
                  fmt::format("hues are turned by {:.1f} degrees", fit.hueDegrees));
        TellListedFine();
        mFindings.NotVisible(id::kColorClipped, "a movie without other faults of colour");
    }

    void TellUndecided(std::size_t best, double off)
    {
        const std::string_view check = mList[best].ids.front();
        Finding& finding = mFindings.Undecided(
            check,
            fmt::format("codes are off by {:.1f} and nothing on the list explains it; nearest is that {} "
                        "(residual {:.1f} codes)",
                        off, mList[best].message, mResiduals[best]));
        finding.expected = 0.0;
        finding.found = off;
        finding.uncertainty = mNoise;
        finding.unit = "codes";
    }

    const ColorCase& mGiven;
    Findings& mFindings;
    double mNoise;
    double mTolerance;
    Coding mCoding;
    std::vector<ColorPair> mPairs;
    std::vector<Hypothesis> mList;
    std::optional<ClippingFit> mClipping;
    std::vector<double> mResiduals;
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
    Judging(given, findings).Run();
}

} // namespace tessel::verify::judge
