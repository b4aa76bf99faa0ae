#include "DetailJudge.h"

#include "ChromaFit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace tessel::verify::judge {
namespace {

// --- depth

constexpr int kManyCodes = 12;      // different codes of the clip that a loss would change: no chance
constexpr int kFewCodes = 3;        // enough where each is exactly as the loss predicts
constexpr double kNearlyAll = 0.98; // of samples
constexpr double kHalfOfTheStairs = 0.5;
constexpr int kMostLost = 5; // bits

constexpr const char* kUseInPlace = "a movie of the clip's size, in a sample format that tessel render writes";

void FaultOfDepth(Findings& findings, int expected, int found, const std::string& how)
{
    Finding& finding =
        findings.Fault(id::kColorDepth, fmt::format("codes have {} bits, not {}: {}", found, expected, how));
    finding.expected = static_cast<double>(expected);
    finding.found = static_cast<double>(found);
    finding.uncertainty = 0;
}

/// Codes that came back as they were sent tell each for itself.
/// @return bits that are lost; nothing where these codes cannot tell
std::optional<int> LostBits(const CodeCounts& counts)
{
    const int expected = counts.ExpectedBits();
    const int found = counts.FoundBits();
    if (found < expected && counts.FoundCodes() > 2) {
        const int changed = counts.CodesChangedBy(found);
        if (changed >= kManyCodes || (changed >= kFewCodes && counts.ShareExplainedBy(found) > kNearlyAll)) {
            return expected - found;
        }
        return std::nullopt;
    }
    // Two bits less would have shown in these codes.
    const bool isVisible = expected > 3 && counts.CodesChangedBy(expected - 2) >= kFewCodes;
    return isVisible ? std::optional(0) : std::nullopt;
}

double StepOf(int lostBits, int bits)
{
    return std::exp2(lostBits) * 255 / (std::exp2(bits) - 1);
}

double JudgeExactDepth(const DetailSampler& sampler, Findings& findings)
{
    bool isVisible = false;
    for (const std::optional<CodeCounts>* counts : {&sampler.Levels(), &sampler.Chroma()}) {
        if (!*counts) {
            continue;
        }
        const std::optional<int> lost = LostBits(**counts);
        isVisible = isVisible || lost;
        if (lost.value_or(0) > 0) {
            FaultOfDepth(findings, (*counts)->ExpectedBits(), (*counts)->FoundBits(),
                         fmt::format("{} different codes where the clip has {}, {} dither",
                                     (*counts)->FoundCodes(), (*counts)->ExpectedCodes(),
                                     (*counts)->IsDithered() ? "with" : "without"));
            return StepOf(*lost, (*counts)->ExpectedBits());
        }
    }
    if (isVisible) {
        findings.AsExpected(id::kColorDepth);
    } else {
        findings.NotVisible(id::kColorDepth);
    }
    return 0;
}

/// Behind a codec that changes single codes, means tell.
double JudgeMeanDepth(const DetailSampler& sampler, Findings& findings)
{
    const int bits = sampler.Levels() ? sampler.Levels()->ExpectedBits() : 0;
    const int wide = sampler.Levels() ? sampler.Levels()->Bits() : 0;
    std::optional<StairFit> best;
    int bestLost = 0;
    bool isFine = false;
    for (int lost = 1; lost <= kMostLost && bits - lost >= 3; ++lost) {
        const std::optional<StairFit> fit = FitStairs(sampler.Stairs(), lost + wide - bits);
        if (!fit) {
            continue;
        }
        isFine = isFine || (lost <= 2 && fit->share + fit->uncertainty < kHalfOfTheStairs);
        const bool isThere = fit->share - fit->uncertainty > kHalfOfTheStairs &&
                             fit->share + fit->uncertainty < 3 * kHalfOfTheStairs;
        if (isThere && (!best || fit->explained > best->explained)) {
            best = fit;
            bestLost = lost;
        }
    }
    if (best) {
        FaultOfDepth(findings, bits, bits - bestLost,
                     fmt::format("means of codes follow {:.0f} % of the stairs of a cut, without dither",
                                 std::min(1.0, best->share) * 100));
        return StepOf(bestLost, bits);
    }
    if (isFine) {
        findings.AsExpected(id::kColorDepth);
    } else {
        findings.NotVisible(id::kColorDepth, "a gradient, and a codec that loses less");
    }
    return 0;
}

// --- chroma

/// Parts of an edge's height by which codecs of a class change its course.
double EdgeNoise(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless ? 0.05 : codec == CodecClass::Mezzanine ? 0.12 : 0.25;
}

/// What a lossy codec does to an edge, it does to all of the edge's lines.
constexpr int kLeastPlaces = 4;

/// Chroma samples by which codecs of a class move an edge: a standard deviation, the same in all lines of one
/// place.
double EdgePlaceNoise(CodecClass codec) noexcept
{
    return codec == CodecClass::Lossless ? 0 : codec == CodecClass::Mezzanine ? 0.06 : 0.15;
}

/// Whether fewer samples explain the edges much better than any shift does.
bool IsThinned(const ChromaFit& fit, CodecClass codec) noexcept
{
    constexpr double kMuchBetter = 0.6;
    constexpr double kMost = 0.25; // of an edge: what is further off is something else
    // A codec's losses do not happen to be those of fewer samples: where these explain nearly all, they are
    // few.
    constexpr double kPlainlyBetter = 0.2;
    constexpr double kPlain = 0.08; // of an edge
    const bool isPlain =
        fit.shiftedResidual > kPlain && fit.thinnedResidual < kPlainlyBetter * fit.shiftedResidual;
    return fit.edges > 0 &&
           (isPlain || (fit.shiftedResidual > EdgeNoise(codec) && fit.thinnedResidual < kMost &&
                        fit.thinnedResidual < kMuchBetter * fit.shiftedResidual));
}

/// Whether fewer samples would have shown: edges that all begin a group of samples look the same.
bool TellsThinned(const ChromaFit& fit, CodecClass codec) noexcept
{
    return fit.edges > 0 && fit.thinnedResidual > fit.plainResidual + EdgeNoise(codec);
}

/// Whether fewer samples explain the edges as well as a shift does, and either is needed: edges that all lie on
/// even columns, or all on odd ones, look the same then.
bool IsEitherWay(const ChromaFit& fit, CodecClass codec) noexcept
{
    const double noise = EdgeNoise(codec);
    return fit.edges > 0 && fit.plainResidual > 2 * noise && fit.shiftedResidual <= noise &&
           fit.thinnedResidual <= noise;
}

/// Part of an edge's height by which a model differs that is no other one's twin.
constexpr double kVisibleChange = 0.02;

/// Whether the clip's rows differ enough for pairs of them to show.
bool ShowsPairsOfRows(const RowSteps& steps) noexcept
{
    constexpr double kEnough = 20; // codes
    return steps.was > kEnough;
}

/// Whether rows come in pairs that are alike, where the clip's are not.
bool HasPairsOfRows(const RowSteps& steps) noexcept
{
    return ShowsPairsOfRows(steps) && steps.is < 0.3 * steps.was && steps.isNext > 1.4 * steps.wasNext;
}

std::string SubsamplingName(int across, int down, bool knowsDown)
{
    const int first = across == 1 ? 4 : across == 2 ? 2 : 1;
    const int second = down == 1 ? first : 0;
    if (knowsDown) {
        return across == 1 && down > 1 ? "4:4:0" : fmt::format("4:{}:{}", first, second);
    }
    return first == 2 ? std::string("4:2:2 or 4:2:0") : fmt::format("4:{}:{}", first, first);
}

class ChromaJudging {
public:
    ChromaJudging(const DetailSampler& sampler, const read::PictureFacts& movie, Findings& findings)
        : mSampler(sampler), mMovie(movie), mFindings(findings), mCodec(findings.Limits().picture),
          mIsRgb(movie.format.isRgb), mPerX(movie.format.isRgb ? 1 : 1 << movie.format.chromaShiftX),
          mPerY(movie.format.isRgb ? 1 : 1 << movie.format.chromaShiftY),
          mAcross(FitChroma(sampler.Edges(Axis::Across), mIsRgb && !movie.format.isFloat, mPerX)),
          mDown(FitChroma(sampler.Edges(Axis::Down), mIsRgb && !movie.format.isFloat, mPerY))
    {
    }

    void Run(DetailResult& result)
    {
        // The stairs of codes that were cut to fewer bits come at every second row, too.
        mHasPairsOfRows = mPerY == 1 && result.lostStep == 0 && HasPairsOfRows(mSampler.Steps());
        if (mAcross.edges == 0 && mDown.edges == 0 && !mHasPairsOfRows) {
            mFindings.NotVisible(id::kColorSubsampling);
            mFindings.NotVisible(id::kColorSiting);
            return;
        }
        const bool isThinned = JudgeSubsampling();
        JudgeSiting(isThinned, result);
        result.chromaOff = std::max({isThinned ? 1.0 : 0.0, std::abs(result.chroma.right.value_or(0)),
                                     std::abs(result.chroma.down.value_or(0))});
    }

private:
    bool JudgeSubsampling()
    {
        // Where a shift explains all as well, fewer samples are likelier unless samples are few already.
        const bool isEither = mPerX == 1 && IsEitherWay(mAcross, mCodec);
        const bool thinsAcross = isEither || IsThinned(mAcross, mCodec);
        const bool thinsDown = mHasPairsOfRows || IsThinned(mDown, mCodec);
        if (!thinsAcross && !thinsDown) {
            mFindings.AsExpected(id::kColorSubsampling);
            if (mPerY == 1 && mDown.edges > 0 && !TellsPairsOfRows()) {
                mFindings.Note(
                    fmt::format("half of the rows of chroma could be lost unseen: all edges down lie "
                                "between pairs of rows [{}]",
                                id::kColorSubsampling));
            }
            return false;
        }
        const int across = thinsAcross ? mAcross.thinned : mPerX;
        const int down = mHasPairsOfRows ? 2 : thinsDown ? mDown.thinned : mPerY;
        const std::string was = SubsamplingName(mPerX, mPerY, true);
        const std::string is = SubsamplingName(across, down, thinsDown || TellsThinned(mDown, mCodec));
        const std::string what =
            fmt::format("chroma was subsampled to {} on its way, where samples are {}", is, was);
        Finding& finding = mFindings.Fault(
            id::kColorSubsampling,
            isEither && !thinsDown
                ? fmt::format("one of: {}, or it lies {:.2f} luma pixels to the {} ({})", what,
                              std::abs(mAcross.shift), mAcross.shift < 0 ? "left" : "right", Residuals())
                : fmt::format("{} ({})", what, Residuals()));
        finding.expected = was;
        finding.found = is;
        return true;
    }

    /// Whether rows that were halved would have shown, at edges or in a gradient.
    [[nodiscard]] bool TellsPairsOfRows() const
    {
        return mDown.thinnedResidual > mDown.plainResidual + kVisibleChange ||
               ShowsPairsOfRows(mSampler.Steps());
    }

    /// What the edges, or the rows, tell; residuals are parts of an edge's height.
    [[nodiscard]] std::string Residuals() const
    {
        const bool isAcross = mAcross.edges > 0 && mAcross.plainResidual > mDown.plainResidual;
        const ChromaFit& told = isAcross ? mAcross : mDown;
        return told.plainResidual > EdgeNoise(mCodec)
                   ? fmt::format("residual {:.2f} of an edge; without that {:.2f}", told.thinnedResidual,
                                 told.plainResidual)
                   : std::string("rows of chroma come in pairs");
    }

    /// Chroma's shift beside luma's own along one axis.
    [[nodiscard]] Measured Shift(const ChromaFit& fit, Axis axis) const
    {
        // Where there are many places, their own spread has it.
        const double codec = 2 * EdgePlaceNoise(mCodec) / std::max(1, fit.places);
        const int perChroma = axis == Axis::Across ? mPerX : mPerY;
        // Luma of R'G'B' that clips at an edge seems to move a little.
        constexpr double kClipped = 0.25;
        const double luma = mSampler.Luma(axis).Mean();
        const bool hasMoved = !mIsRgb || std::abs(luma) > kClipped;
        return {0, fit.shift - (hasMoved ? luma : 0), std::hypot(fit.shiftUncertainty, codec * perChroma)};
    }

    void JudgeSiting(bool isThinned, DetailResult& result)
    {
        const Measured right = Shift(mAcross, Axis::Across);
        const Measured down = Shift(mDown, Axis::Down);
        if (isThinned) {
            mFindings.NotVisible(id::kColorSiting, "chroma that was not subsampled on its way");
            return;
        }
        const double tolerance = mFindings.Limits().Of(id::kColorSiting);
        const auto isKnown = [&](const ChromaFit& fit, const Measured& shift) {
            // Courses that even a shift does not explain give no evidence for one. Few edges behind a codec
            // give it for a large shift only.
            const bool isEnough = mCodec == CodecClass::Lossless || fit.places >= kLeastPlaces;
            const bool isFine = 2 * shift.uncertainty <= tolerance;
            return fit.edges > 0 && isEnough &&
                   fit.shiftedResidual < 2 * EdgeNoise(mCodec) + std::abs(shift.found) &&
                   (isFine || std::abs(shift.found) > tolerance + shift.uncertainty);
        };
        const bool knowsRight = isKnown(mAcross, right);
        const bool knowsDown = isKnown(mDown, down);
        if (!knowsRight && !knowsDown) {
            mFindings.NotVisible(id::kColorSiting);
            return;
        }
        if (knowsRight) {
            result.chroma.right = right.found;
        }
        if (knowsDown) {
            result.chroma.down = down.found;
        }
        if (IsWhereAnnounced(result.chroma)) {
            mFindings.AsExpected(id::kColorSiting);
            return;
        }
        // The axis that is further off is the check's number.
        const bool isRight = !knowsDown || (knowsRight && std::abs(right.found) >= std::abs(down.found));
        const Measured& worse = isRight ? right : down;
        std::string message = "chroma lies";
        const auto add = [&](const Measured& shift, std::string_view forwards, std::string_view backwards) {
            if (std::abs(shift.found) > std::max(tolerance / 2, shift.uncertainty)) {
                message += fmt::format("{} {:.2f} luma pixels {}", message.size() > 11 ? " and" : "",
                                       std::abs(shift.found), shift.found > 0 ? forwards : backwards);
            }
        };
        if (knowsRight) {
            add(right, "to the right", "to the left");
        }
        if (knowsDown) {
            add(down, "too low", "too high");
        }
        static_cast<void>(mFindings.Judge(id::kColorSiting, worse, message + " of where it should be"));
    }

    /// Chroma that was moved on purpose is announced: conversions put it on even columns and between rows.
    [[nodiscard]] bool IsWhereAnnounced(const ChromaShift& chroma) const
    {
        const double tolerance = mFindings.Limits().Of(id::kColorSiting);
        return mMovie.siting && mPerX > 1 &&
               std::abs(chroma.right.value_or(0) - mMovie.siting->x) < tolerance &&
               (mPerY == 1 || std::abs(chroma.down.value_or(0) - (mMovie.siting->y - 0.5)) < tolerance);
    }

    const DetailSampler& mSampler;
    const read::PictureFacts& mMovie;
    Findings& mFindings;
    CodecClass mCodec;
    bool mIsRgb;
    int mPerX;
    int mPerY;
    ChromaFit mAcross;
    ChromaFit mDown;
    bool mHasPairsOfRows = false;
};

} // namespace

DetailResult JudgeDetail(const DetailSampler& sampler, const read::PictureFacts& movie, Findings& findings)
{
    DetailResult result;
    if (!sampler.HasPictures()) {
        for (const std::string_view check : {id::kColorDepth, id::kColorSubsampling, id::kColorSiting}) {
            findings.NotVisible(check, kUseInPlace);
        }
        return result;
    }
    result.lostStep = findings.Limits().picture == CodecClass::Lossless ? JudgeExactDepth(sampler, findings)
                                                                        : JudgeMeanDepth(sampler, findings);
    ChromaJudging(sampler, movie, findings).Run(result);
    return result;
}

} // namespace tessel::verify::judge
